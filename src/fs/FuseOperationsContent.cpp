// Open files.
#include "fs/FuseOperations.h"

#include <fcntl.h>

namespace nimbrel {

namespace {

// Whether the kernel's pages of this file are still what is on disk; else they go with the open.
// Where it holds other attributes than these, it is made to ask for them anew.
bool keepsPages(FuseDisk &disk, Node &node, const struct stat &attributes)
{
    const ContentVersion now = ContentVersion::of(attributes);
    if (node.told != 0 && node.told != now.digest()) {
        node.told = 0;
        disk.forgetAttributes(node.number);
    }
    const bool keeps = now == node.version();
    if (!keeps)
        node.setVersion(now);
    return keeps;
}

bool isWritable(int flags)
{
    return (flags & O_ACCMODE) != O_RDONLY;
}

void closeFile(FuseDisk &disk, std::uint64_t number)
{
    OpenFile &file = Handles<OpenFile>::at(number);
    disk.delegate->releaseFileAtPath({}, file.handle);
    disk.nodes.closed(*file.node, file);
    disk.files.remove(number);
}

// Hands an open file to the kernel with `reply`; on its refusal the file is closed again.
template <class Reply>
void handOver(FuseDisk &disk, Node &node, NBFileHandle handle, fuse_file_info &info, Reply reply)
{
    auto file = std::make_unique<OpenFile>();
    file->handle = std::move(handle);
    file->node = &node;
    file->isWritable = isWritable(info.flags);
    disk.nodes.opened(node, *file);
    info.fh = disk.files.add(std::move(file));
    if (reply() != 0)
        closeFile(disk, info.fh);
}

// Opens what the kernel means. Looked at once it is open: a look before would be one more walk
// along the path, and would tell of the moment before.
NBErrnoOr<NBFileHandle> openNode(FuseDisk &disk, Node &node, int flags, struct stat &attributes)
{
    const NBErrnoOr<std::string> path = disk.nodes.pathOf(node);
    if (!path)
        return path.error();
    NBErrnoOr<NBFileHandle> handle = disk.tree.open(*path, flags);
    if (!handle) {
        const NBErrnoOr<std::string> checked = disk.checkedPathOf(node);
        return checked ? handle.error() : checked.error();
    }
    const NBErrnoOr<struct stat> opened = disk.tree.attributes(*handle);
    if (!opened)
        return opened.error();
    attributes = *opened;
    return isSameItem(node, attributes) ? std::move(handle) : NBErrno{ESTALE};
}

void open(fuse_req_t request, fuse_ino_t number, fuse_file_info *info)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        const NBErrnoOr<Node *> node = nodeOf(disk, number);
        if (!node)
            return node.error();
        struct stat attributes = {};
        NBErrnoOr<NBFileHandle> handle = openNode(disk, **node, info->flags, attributes);
        if (!handle)
            return handle.error();
        info->keep_cache = keepsPages(disk, **node, attributes) ? 1 : 0;
        handOver(disk, **node, std::move(*handle), *info,
                 [&] { return fuse_reply_open(request, info); });
        return {};
    });
}

void create(fuse_req_t request, fuse_ino_t folderNumber, const char *name, mode_t mode,
            fuse_file_info *info)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        if (const NBDone fits = disk.tree.checkName(name); !fits)
            return fits;
        const NBErrnoOr<Node *> folder = nodeOf(disk, folderNumber);
        if (!folder)
            return folder.error();
        const NBErrnoOr<std::string> path = disk.nodes.pathOf(**folder, name);
        if (!path)
            return path.error();
        NBErrnoOr<NBFileHandle> handle =
            disk.tree.create(*path, info->flags, mode, creatorOf(request));
        if (!handle)
            return handle.error();
        const NBErrnoOr<struct stat> attributes = disk.tree.attributes(*handle);
        if (!attributes)
            return attributes.error();
        const fuse_entry_param entry = entryFor(disk, **folder, name, *attributes);
        Node &node = *disk.nodes.find(entry.ino);
        node.setVersion(ContentVersion::of(*attributes));
        handOver(disk, node, std::move(*handle), *info, [&] {
            const int refused = fuse_reply_create(request, &entry, info);
            if (refused != 0)
                disk.nodes.forget(entry.ino, 1);
            return refused;
        });
        return {};
    });
}

void read(fuse_req_t request, fuse_ino_t, std::size_t size, off_t offset, fuse_file_info *info)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        if (size > disk.reply.size())
            return NBErrno{EINVAL}; // more than was agreed on; less would be the file's end
        const ByteSpan room = disk.reply.first(size);
        const NBErrnoOr<std::size_t> got = disk.content.read(fileOf(*info).handle, room, offset);
        if (!got)
            return got.error();
        disk.turn->unlock(); // to give the bytes takes as long as to read them
        fuse_reply_buf(request, reinterpret_cast<const char *>(room.data()), *got);
        return {};
    });
}

void write(fuse_req_t request, fuse_ino_t, const char *data, std::size_t size, off_t offset,
           fuse_file_info *info)
{
    answer(request, [&]() -> NBDone {
        OpenFile &file = fileOf(*info);
        FuseDisk &disk = diskOf(request);
        if (disk.dropsPrivileges)
            if (const NBDone dropped = disk.tree.dropPrivileges(file.handle); !dropped)
                return dropped;
        const NBErrnoOr<std::size_t> done =
            disk.content.write(file.handle, bytesOf(std::string_view(data, size)), offset);
        if (!done)
            return done.error();
        file.node->told = 0; // the kernel asks anew after a write
        fuse_reply_write(request, *done);
        return {};
    });
}

void sync(fuse_req_t request, fuse_ino_t, int dataOnly, fuse_file_info *info)
{
    answerDone(request,
               [&] { return diskOf(request).content.sync(fileOf(*info).handle, dataOnly != 0); });
}

void release(fuse_req_t request, fuse_ino_t, fuse_file_info *info)
{
    answerDone(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        OpenFile &file = fileOf(*info);
        // What the pages hold is what was written through this handle.
        if (file.isWritable)
            if (const auto attributes = disk.tree.attributes(file.handle); attributes)
                file.node->setVersion(ContentVersion::of(*attributes));
        closeFile(disk, info->fh);
        return {};
    });
}

void allocate(fuse_req_t request, fuse_ino_t, int mode, off_t offset, off_t length,
              fuse_file_info *info)
{
    answerDone(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        NBFileHandle &handle = fileOf(*info).handle;
        // The kernel doesn't say whether the caller may keep set-uid bits; only root may.
        if (fuse_req_ctx(request)->uid != 0)
            if (const NBDone dropped = disk.tree.dropPrivileges(handle); !dropped)
                return dropped;
        fileOf(*info).node->told = 0;
        return disk.content.allocate(handle, mode, offset, length);
    });
}

void seek(fuse_req_t request, fuse_ino_t, off_t offset, int whence, fuse_file_info *info)
{
    answer(request, [&]() -> NBDone {
        const NBErrnoOr<std::int64_t> found =
            diskOf(request).content.seek(fileOf(*info).handle, offset, whence);
        if (!found)
            return found.error();
        fuse_reply_lseek(request, *found);
        return {};
    });
}

} // namespace

void addContentOperations(fuse_lowlevel_ops &operations)
{
    // No flush: every write has told its error, and a request less for each file that is closed.
    operations.open = open;
    operations.create = create;
    operations.read = read;
    operations.write = write;
    operations.fsync = sync;
    operations.release = release;
    operations.fallocate = allocate;
    operations.lseek = seek;
}

} // namespace nimbrel
