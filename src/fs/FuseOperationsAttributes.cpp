// Attributes, extended attributes, the filesystem's own figures.
#include "fs/FuseOperations.h"

#include <fcntl.h>

namespace nimbrel {

namespace {

NBDone replyAttributes(fuse_req_t request, Node &node)
{
    const NBErrnoOr<struct stat> attributes = diskOf(request).attributesOf(node);
    if (!attributes)
        return attributes.error();
    node.told = ContentVersion::of(*attributes).digest();
    fuse_reply_attr(request, &*attributes, attributesStay);
    return {};
}

void getAttributes(fuse_req_t request, fuse_ino_t number, fuse_file_info *)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        const NBErrnoOr<Node *> node = nodeOf(disk, number);
        if (!node)
            return node.error();
        return replyAttributes(request, **node);
    });
}

std::optional<timespec> timeFor(int toSet, int setFlag, int nowFlag, const timespec &time)
{
    if ((toSet & nowFlag) != 0)
        return timespec{0, UTIME_NOW};
    if ((toSet & setFlag) != 0)
        return time;
    return std::nullopt;
}

// What is to be set beside the size.
NBItemAttributes wanted(const struct stat &values, int toSet)
{
    NBItemAttributes attributes;
    if ((toSet & FUSE_SET_ATTR_MODE) != 0)
        attributes.posixPermissions = values.st_mode & 07777U;
    if ((toSet & FUSE_SET_ATTR_UID) != 0)
        attributes.owner = values.st_uid;
    if ((toSet & FUSE_SET_ATTR_GID) != 0)
        attributes.group = values.st_gid;
    attributes.accessDate =
        timeFor(toSet, FUSE_SET_ATTR_ATIME, FUSE_SET_ATTR_ATIME_NOW, values.st_atim);
    attributes.modificationDate =
        timeFor(toSet, FUSE_SET_ATTR_MTIME, FUSE_SET_ATTR_MTIME_NOW, values.st_mtim);
    return attributes;
}

bool isEmpty(const NBItemAttributes &attributes)
{
    return !attributes.posixPermissions && !attributes.owner && !attributes.group &&
           !attributes.accessDate && !attributes.modificationDate;
}

OpenFile *writableFile(const Node &node)
{
    for (OpenFile *file : node.openFiles())
        if (file->isWritable)
            return file;
    return nullptr;
}

NBDone setSize(FuseDisk &disk, Node &node, OpenFile *file, off_t size, bool dropsPrivileges)
{
    const auto work = [&](NBFileHandle &handle) {
        const NBDone dropped = dropsPrivileges ? disk.tree.dropPrivileges(handle) : NBDone();
        return dropped ? disk.content.setSize(handle, size) : dropped;
    };
    if (file == nullptr || !file->isWritable)
        file = writableFile(node);
    if (file != nullptr)
        return work(file->handle);
    const NBErrnoOr<std::string> path = disk.checkedPathOf(node);
    if (!path)
        return path.error();
    NBErrnoOr<NBFileHandle> handle = disk.tree.open(*path, O_RDWR);
    if (!handle)
        return handle.error();
    const NBDone done = work(*handle);
    disk.delegate->releaseFileAtPath(*path, *handle);
    return done;
}

NBDone setOthers(FuseDisk &disk, Node &node, OpenFile *file, const NBItemAttributes &attributes)
{
    if (isEmpty(attributes))
        return {};
    if (file == nullptr && node.isOpen())
        file = node.openFiles().front();
    if (file != nullptr)
        return disk.tree.setAttributes(file->handle, attributes);
    const NBErrnoOr<std::string> path = disk.checkedPathOf(node);
    if (!path)
        return path.error();
    return disk.tree.setAttributes(*path, attributes);
}

void setAttributes(fuse_req_t request, fuse_ino_t number, struct stat *values, int toSet,
                   fuse_file_info *info)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        const NBErrnoOr<Node *> node = nodeOf(disk, number);
        if (!node)
            return node.error();
        OpenFile *file = info == nullptr ? nullptr : &fileOf(*info);
        if ((toSet & FUSE_SET_ATTR_SIZE) != 0)
            if (const NBDone done = setSize(disk, **node, file, values->st_size,
                                            (toSet & FUSE_SET_ATTR_KILL_SUID) != 0);
                !done)
                return done;
        if (const NBDone done = setOthers(disk, **node, file, wanted(*values, toSet)); !done)
            return done;
        return replyAttributes(request, **node);
    });
}

void fileSystem(fuse_req_t request, fuse_ino_t)
{
    answer(request, [&]() -> NBDone {
        const NBErrnoOr<struct statvfs> figures = diskOf(request).tree.fileSystem("/");
        if (!figures)
            return figures.error();
        fuse_reply_statfs(request, &*figures);
        return {};
    });
}

// Extended attributes are asked of a path; a file without a name has none to give.
template <class Work>
void withPath(fuse_req_t request, fuse_ino_t number, Work work)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        const NBErrnoOr<Node *> node = nodeOf(disk, number);
        if (!node)
            return node.error();
        const NBErrnoOr<std::string> path = disk.nodes.pathOf(**node);
        if (!path)
            return path.error();
        return work(disk, *path);
    });
}

// The bytes, or their number where the caller only asks for that.
NBDone replyBytes(fuse_req_t request, ByteView bytes, std::size_t room)
{
    if (room == 0)
        fuse_reply_xattr(request, bytes.size());
    else if (bytes.size() > room)
        return NBErrno{ERANGE};
    else
        fuse_reply_buf(request, reinterpret_cast<const char *>(bytes.data()), bytes.size());
    return {};
}

void getExtended(fuse_req_t request, fuse_ino_t number, const char *name, std::size_t size)
{
    withPath(request, number, [&](FuseDisk &disk, const std::string &path) -> NBDone {
        const NBErrnoOr<Bytes> value = disk.tree.extendedAttribute(path, name);
        return value ? replyBytes(request, *value, size) : NBDone(value.error());
    });
}

void listExtended(fuse_req_t request, fuse_ino_t number, std::size_t size)
{
    withPath(request, number, [&](FuseDisk &disk, const std::string &path) -> NBDone {
        const NBErrnoOr<std::vector<std::string>> names = disk.tree.extendedAttributes(path);
        if (!names)
            return names.error();
        std::string list;
        for (const std::string &name : *names)
            list.append(name).push_back('\0');
        return replyBytes(request, bytesOf(list), size);
    });
}

void setExtended(fuse_req_t request, fuse_ino_t number, const char *name, const char *value,
                 std::size_t size, int options)
{
    withPath(request, number, [&](FuseDisk &disk, const std::string &path) -> NBDone {
        const NBDone done = disk.tree.setExtendedAttribute(
            path, name, bytesOf(std::string_view(value, size)), options);
        if (done)
            fuse_reply_err(request, 0);
        return done;
    });
}

void removeExtended(fuse_req_t request, fuse_ino_t number, const char *name)
{
    withPath(request, number, [&](FuseDisk &disk, const std::string &path) -> NBDone {
        const NBDone done = disk.tree.removeExtendedAttribute(path, name);
        if (done)
            fuse_reply_err(request, 0);
        return done;
    });
}

// Asked where the store decides; the kernel asks nobody where it checks itself.
void checkAccess(fuse_req_t request, fuse_ino_t number, int mask)
{
    answerDone(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        const NBErrnoOr<Node *> node = nodeOf(disk, number);
        if (!node)
            return node.error();
        const NBErrnoOr<std::string> path = disk.checkedPathOf(**node);
        return path ? disk.tree.checkAccess(*path, mask) : NBDone(path.error());
    });
}

} // namespace

void addAttributeOperations(fuse_lowlevel_ops &operations)
{
    operations.getattr = getAttributes;
    operations.setattr = setAttributes;
    operations.access = checkAccess;
    operations.statfs = fileSystem;
    operations.getxattr = getExtended;
    operations.listxattr = listExtended;
    operations.setxattr = setExtended;
    operations.removexattr = removeExtended;
}

} // namespace nimbrel
