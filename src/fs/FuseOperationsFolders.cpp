// Listings.
#include "fs/FuseOperations.h"

#include <dirent.h>
#include <sys/stat.h>

namespace nimbrel {

namespace {

constexpr off_t ownEntries = 2; // "." and ".." come before a folder's entries

NBErrnoOr<std::vector<NBDirectoryEntry>> listNode(FuseDisk &disk, fuse_ino_t number)
{
    const NBErrnoOr<Node *> node = nodeOf(disk, number);
    if (!node)
        return node.error();
    const NBErrnoOr<std::string> path = disk.nodes.pathOf(**node);
    if (!path)
        return path.error();
    return disk.tree.list(*path);
}

void openFolder(fuse_req_t request, fuse_ino_t number, fuse_file_info *info)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        NBErrnoOr<std::vector<NBDirectoryEntry>> entries = listNode(disk, number);
        if (!entries)
            return entries.error();
        auto folder = std::make_unique<OpenFolder>();
        folder->entries = std::move(*entries);
        info->fh = disk.folders.add(std::move(folder));
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
    ListingReply(fuse_req_t request, Node &folder, std::size_t size, bool withAttributes)
        : _request(request), _folder(folder), _buffer(size), _withAttributes(withAttributes)
    {
    }

    // False when it doesn't fit any more.
    bool add(const char *name, ino_t inode, unsigned char type, off_t next)
    {
        fuse_entry_param entry{};
        entry.attr.st_ino = inode;
        entry.attr.st_mode = static_cast<mode_t>(DTTOIF(type));
        return put(name, entry, next);
    }

    bool add(const NBDirectoryEntry &item, off_t next)
    {
        if (!_withAttributes)
            return add(item.name.c_str(), item.inode, item.type, next);
        FuseDisk &disk = diskOf(_request);
        const NBErrnoOr<std::string> path = disk.nodes.pathOf(_folder, item.name);
        if (!path)
            return add(item.name.c_str(), item.inode, item.type, next);
        const NBErrnoOr<struct stat> attributes = disk.tree.attributes(*path);
        // Gone by now: the name alone, which makes the kernel look for itself.
        if (!attributes)
            return add(item.name.c_str(), item.inode, item.type, next);
        if (!fits(item.name.c_str()))
            return false;
        const fuse_entry_param entry = entryFor(disk, _folder, item.name, *attributes);
        if (put(item.name.c_str(), entry, next)) {
            _referred.push_back(entry.ino);
            return true;
        }
        disk.nodes.forget(entry.ino, 1);
        return false;
    }

    void send()
    {
        if (fuse_reply_buf(_request, _buffer.data(), _used) == 0)
            return;
        FuseDisk &disk = diskOf(_request);
        for (const fuse_ino_t number : _referred)
            disk.nodes.forget(number, 1);
    }

private:
    [[nodiscard]] bool fits(const char *name)
    {
        const fuse_entry_param entry{};
        return fuse_add_direntry_plus(_request, nullptr, 0, name, &entry, 0) <=
               _buffer.size() - _used;
    }

    bool put(const char *name, const fuse_entry_param &entry, off_t next)
    {
        char *place = _buffer.data() + _used;
        const std::size_t room = _buffer.size() - _used;
        const std::size_t size =
            _withAttributes ? fuse_add_direntry_plus(_request, place, room, name, &entry, next)
                            : fuse_add_direntry(_request, place, room, name, &entry.attr, next);
        if (size > room)
            return false;
        _used += size;
        return true;
    }

    fuse_req_t _request;
    Node &_folder;
    std::vector<char> _buffer;
    std::vector<fuse_ino_t> _referred;
    std::size_t _used = 0;
    bool _withAttributes;
};

ino_t inodeOf(FuseDisk &disk, const Node &folder)
{
    if (&folder != &disk.nodes.root())
        return folder.inode;
    const NBErrnoOr<struct stat> attributes = disk.tree.attributes("/");
    return attributes ? attributes->st_ino : NodeTable::rootNumber;
}

bool addOwnEntry(ListingReply &reply, FuseDisk &disk, Node &folder, off_t offset)
{
    if (offset == 0)
        return reply.add(".", inodeOf(disk, folder), DT_DIR, 1);
    const Node &above = folder.names.empty() ? folder : *folder.names.front()->folder;
    return reply.add("..", inodeOf(disk, above), DT_DIR, ownEntries);
}

void giveListing(fuse_req_t request, fuse_ino_t number, std::size_t size, off_t offset,
                 const fuse_file_info *info, bool withAttributes)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        OpenFolder &open = folderOf(*info);
        if (offset == 0 && !open.isFresh) { // rewinddir: what is there now
            NBErrnoOr<std::vector<NBDirectoryEntry>> entries = listNode(disk, number);
            if (!entries)
                return entries.error();
            open.entries = std::move(*entries);
        }
        open.isFresh = false;
        const NBErrnoOr<Node *> folder = nodeOf(disk, number);
        if (!folder)
            return folder.error();
        ListingReply reply(request, **folder, size, withAttributes);
        const off_t end = ownEntries + static_cast<off_t>(open.entries.size());
        for (off_t at = offset; at < end; ++at) {
            const bool added =
                at < ownEntries
                    ? addOwnEntry(reply, disk, **folder, at)
                    : reply.add(open.entries[static_cast<std::size_t>(at - ownEntries)], at + 1);
            if (!added)
                break;
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
