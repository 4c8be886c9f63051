// Listings.
#include "fs/FuseOperations.h"

#include <algorithm>
#include <dirent.h>
#include <sys/stat.h>

namespace nimbrel {

namespace {

NBErrnoOr<GuardedListing> openListing(FuseDisk &disk, Node &node)
{
    const NBErrnoOr<std::string> path = disk.nodes.pathOf(node);
    if (!path)
        return path.error();
    return GuardedListing::open(*disk.delegate, *path);
}

void openFolder(fuse_req_t request, fuse_ino_t number, fuse_file_info *info)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        const NBErrnoOr<Node *> node = nodeOf(disk, number);
        if (!node)
            return node.error();
        NBErrnoOr<GuardedListing> listing = openListing(disk, **node);
        if (!listing)
            return listing.error();
        const NBErrnoOr<struct stat> attributes = listing->attributes();
        if (!attributes)
            return attributes.error();
        if (*node != &disk.nodes.root() && !isSameItem(**node, *attributes))
            return NBErrno{ESTALE};
        info->cache_readdir = 1;
        info->keep_cache = disk.listings.keeps(number, *attributes) ? 1 : 0;
        info->fh = disk.folders.add(std::make_unique<OpenFolder>(*std::move(listing)));
        if (fuse_reply_open(request, info) != 0)
            disk.folders.remove(info->fh);
        return {};
    });
}

void closeFolder(fuse_req_t request, fuse_ino_t, fuse_file_info *info)
{
    diskOf(request).folders.remove(info->fh);
    fuse_reply_err(request, 0);
}

// Fills one reply with as many entries as fit.
class ListingReply
{
public:
    ListingReply(fuse_req_t request, Node &folder, OpenFolder &open, std::size_t size,
                 bool withAttributes)
        : _request(request), _disk(diskOf(request)), _folder(folder), _open(open),
          _withAttributes(withAttributes)
    {
        const ByteSpan room = _disk.reply.first(std::min(size, _disk.reply.size()));
        _room = {reinterpret_cast<char *>(room.data()), room.size()};
    }

    // False when it doesn't fit any more.
    bool add(const NBDirectoryEntry &item)
    {
        if (!_withAttributes || isDotName(item.name))
            return addName(item);
        // Looked at only where there is room: whoever is told of it holds a reference.
        if (!fits(item.name.c_str()))
            return false;
        const NBErrnoOr<struct stat> attributes = _open.attributesOf(item);
        // Gone by now: the name alone, which makes the kernel look for itself.
        if (!attributes)
            return addName(item);
        const fuse_entry_param entry = entryFor(_disk, _folder, item.name, *attributes);
        _referred.push_back(entry.ino);
        return put(item, entry);
    }

    void send()
    {
        if (fuse_reply_buf(_request, _room.data(), _used) == 0)
            return;
        for (const fuse_ino_t number : _referred)
            _disk.nodes.forget(number, 1);
    }

    [[nodiscard]] bool isEmpty() const noexcept { return _used == 0; }

private:
    bool addName(const NBDirectoryEntry &item)
    {
        fuse_entry_param entry{};
        entry.attr.st_ino = item.inode;
        entry.attr.st_mode = static_cast<mode_t>(DTTOIF(item.type));
        // What is above the disk is nobody's business here.
        if (item.name == ".." && &_folder == &_disk.nodes.root())
            if (const NBErrnoOr<struct stat> own = _open.attributes(); own)
                entry.attr.st_ino = own->st_ino;
        return put(item, entry);
    }

    [[nodiscard]] bool fits(const char *name) const
    {
        const fuse_entry_param entry{};
        return fuse_add_direntry_plus(_request, nullptr, 0, name, &entry, 0) <=
               _room.size() - _used;
    }

    bool put(const NBDirectoryEntry &item, const fuse_entry_param &entry)
    {
        char *place = _room.data() + _used;
        const std::size_t room = _room.size() - _used;
        const char *name = item.name.c_str();
        const std::size_t size =
            _withAttributes
                ? fuse_add_direntry_plus(_request, place, room, name, &entry, item.next)
                : fuse_add_direntry(_request, place, room, name, &entry.attr, item.next);
        if (size > room)
            return false;
        _used += size;
        return true;
    }

    fuse_req_t _request;
    FuseDisk &_disk;
    Node &_folder;
    OpenFolder &_open;
    std::span<char> _room;
    std::vector<fuse_ino_t> _referred;
    std::size_t _used = 0;
    bool _withAttributes;
};

void giveListing(fuse_req_t request, fuse_ino_t number, std::size_t size, off_t offset,
                 const fuse_file_info *info, bool withAttributes)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        const NBErrnoOr<Node *> folder = nodeOf(disk, number);
        if (!folder)
            return folder.error();
        OpenFolder &open = folderOf(*info);
        open.moveTo(offset);
        ListingReply reply(request, **folder, open, size, withAttributes);
        for (;;) {
            const NBErrnoOr<const NBDirectoryEntry *> item = open.peek();
            // What came before the error is given first; the error comes again.
            if (!item && reply.isEmpty())
                return item.error();
            if (!item || *item == nullptr || !reply.add(**item))
                break;
            open.take();
        }
        reply.send();
        return {};
    });
}

void readFolder(fuse_req_t request, fuse_ino_t number, std::size_t size, off_t offset,
                fuse_file_info *info)
{
    giveListing(request, number, size, offset, info, false);
}

void readFolderPlus(fuse_req_t request, fuse_ino_t number, std::size_t size, off_t offset,
                    fuse_file_info *info)
{
    giveListing(request, number, size, offset, info, true);
}

void syncFolder(fuse_req_t request, fuse_ino_t number, int, fuse_file_info *)
{
    answerDone(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        const NBErrnoOr<Node *> node = nodeOf(disk, number);
        if (!node)
            return node.error();
        const NBErrnoOr<std::string> path = disk.nodes.pathOf(**node);
        // Nothing of a removed folder is left to be made safe.
        if (!path)
            return {};
        return disk.tree.syncFolder(*path);
    });
}

} // namespace

void addFolderOperations(fuse_lowlevel_ops &operations)
{
    operations.opendir = openFolder;
    operations.releasedir = closeFolder;
    operations.readdir = readFolder;
    operations.readdirplus = readFolderPlus;
    operations.fsyncdir = syncFolder;
}

} // namespace nimbrel
