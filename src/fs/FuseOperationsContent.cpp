// Open files.
#include "fs/FuseOperations.h"

#include <fcntl.h>

namespace nimbrel {

namespace {

// Whether the kernel's pages of this file are still what is on disk. If not they go with the open,
// and the kernel asks for size and times anew.
bool keepsPages(FuseDisk &disk, Node &node, const NBFileHandle &handle)
{
    const NBErrnoOr<struct stat> attributes = disk.tree.attributes(handle);
    if (!attributes)
        return false;
    const ContentVersion now = ContentVersion::of(*attributes);
    if (now == node.version)
        return true;
    node.version = now;
    disk.forgetAttributes(node.number);
    return false;
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

void open(fuse_req_t request, fuse_ino_t number, fuse_file_info *info)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        const NBErrnoOr<Node *> node = nodeOf(disk, number);
        if (!node)
            return node.error();
        const NBErrnoOr<std::string> path = disk.checkedPathOf(**node);
        if (!path)
            return path.error();
        NBErrnoOr<NBFileHandle> handle = disk.tree.open(*path, info->flags);
        if (!handle)
            return handle.error();
        info->keep_cache = keepsPages(disk, **node, *handle) ? 1 : 0;
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
        node.version = ContentVersion::of(*attributes);
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
        if (disk.readBuffer.size() < size)
            disk.readBuffer.resize(size);
        const NBErrnoOr<std::size_t> got =
            disk.content.read(fileOf(*info).handle, ByteSpan(disk.readBuffer).first(size), offset);
        if (!got)
            return got.error();
        fuse_reply_buf(request, reinterpret_cast<const char *>(disk.readBuffer.data()), *got);
        return {};
    });
}

void write(fuse_req_t request, fuse_ino_t, const char *data, std::size_t size, off_t offset,
           fuse_file_info *info)
{
    answer(request, [&]() -> NBDone {
        OpenFile &file = fileOf(*info);
        const NBErrnoOr<std::size_t> done = diskOf(request).content.write(
            file.handle, bytesOf(std::string_view(data, size)), offset);
        if (!done) {
            file.pendingError = done.code();
            return done.error();
        }
        fuse_reply_write(request, *done);
        return {};
    });
}

int takePendingError(OpenFile &file)
{
    return std::exchange(file.pendingError, 0);
}

NBDone asDone(int code)
{
    return code == 0 ? NBDone() : NBDone(NBErrno{code});
}

void flush(fuse_req_t request, fuse_ino_t, fuse_file_info *info)
{
    answerDone(request, [&] { return asDone(takePendingError(fileOf(*info))); });
}

void sync(fuse_req_t request, fuse_ino_t, int dataOnly, fuse_file_info *info)
{
    answerDone(request, [&]() -> NBDone {
        OpenFile &file = fileOf(*info);
        const NBDone synced = diskOf(request).content.sync(file.handle, dataOnly != 0);
        const int pending = takePendingError(file);
        return synced ? asDone(pending) : synced;
    });
}

void release(fuse_req_t request, fuse_ino_t, fuse_file_info *info)
{
    answerDone(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        OpenFile &file = fileOf(*info);
        // What the pages hold is what was written through this handle.
        if (file.isWritable)
            if (const auto attributes = disk.tree.attributes(file.handle); attributes)
                file.node->version = ContentVersion::of(*attributes);
        closeFile(disk, info->fh);
        return {};
    });
}

void allocate(fuse_req_t request, fuse_ino_t, int mode, off_t offset, off_t length,
              fuse_file_info *info)
{
    answerDone(request, [&] {
        return diskOf(request).content.allocate(fileOf(*info).handle, mode, offset, length);
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
    operations.open = open;
    operations.create = create;
    operations.read = read;
    operations.write = write;
    operations.flush = flush;
    operations.fsync = sync;
    operations.release = release;
    operations.fallocate = allocate;
    operations.lseek = seek;
}

} // namespace nimbrel
