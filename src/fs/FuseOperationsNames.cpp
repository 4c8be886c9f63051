// Lookups, and what makes, moves and removes names.
#include "fs/FuseOperations.h"

namespace nimbrel {

namespace {

// The path of `name` in the folder `number`, if a file could have that name.
NBErrnoOr<std::string> pathFor(FuseDisk &disk, fuse_ino_t number, const char *name)
{
    if (const NBDone fits = disk.tree.checkName(name); !fits)
        return fits.error();
    const NBErrnoOr<Node *> folder = nodeOf(disk, number);
    if (!folder)
        return folder.error();
    return disk.nodes.pathOf(**folder, name);
}

void lookup(fuse_req_t request, fuse_ino_t folder, const char *name)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        if (const NBDone fits = disk.tree.checkName(name); !fits)
            // A name that can't be stored isn't there; only its length is worth a word.
            return fits.code() == ENAMETOOLONG ? fits : NBErrno{ENOENT};
        const NBErrnoOr<Node *> node = nodeOf(disk, folder);
        if (!node)
            return node.error();
        const NBDone replied = replyEntry(request, **node, name);
        if (replied.code() != ENOENT)
            return replied;
        fuse_entry_param nothing{}; // number 0: remembered as missing
        nothing.entry_timeout = attributesStay;
        disk.boundMemory();
        fuse_reply_entry(request, &nothing);
        return {};
    });
}

void forget(fuse_req_t request, fuse_ino_t number, std::uint64_t references)
{
    diskOf(request).nodes.forget(number, references);
    fuse_reply_none(request);
}

void forgetMulti(fuse_req_t request, std::size_t count, fuse_forget_data *forgets)
{
    for (std::size_t i = 0; i < count; ++i)
        diskOf(request).nodes.forget(forgets[i].ino, forgets[i].nlookup);
    fuse_reply_none(request);
}

// Makes an item under `name` with `make(path)` and replies with its entry.
template <class Make>
void makeItem(fuse_req_t request, fuse_ino_t folder, const char *name, Make make)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        const NBErrnoOr<std::string> path = pathFor(disk, folder, name);
        if (!path)
            return path.error();
        if (const NBDone made = make(disk, *path); !made)
            return made;
        return replyEntry(request, *disk.nodes.find(folder), name);
    });
}

void makeNode(fuse_req_t request, fuse_ino_t folder, const char *name, mode_t mode, dev_t device)
{
    makeItem(request, folder, name, [&](FuseDisk &disk, const std::string &path) {
        return disk.tree.makeNode(path, mode, device, creatorOf(request));
    });
}

void makeFolder(fuse_req_t request, fuse_ino_t folder, const char *name, mode_t mode)
{
    makeItem(request, folder, name, [&](FuseDisk &disk, const std::string &path) {
        return disk.tree.makeFolder(path, mode, creatorOf(request));
    });
}

void makeLink(fuse_req_t request, const char *target, fuse_ino_t folder, const char *name)
{
    makeItem(request, folder, name, [&](FuseDisk &disk, const std::string &path) {
        return disk.tree.makeLink(path, target, creatorOf(request));
    });
}

void hardLink(fuse_req_t request, fuse_ino_t number, fuse_ino_t folder, const char *name)
{
    makeItem(request, folder, name, [&](FuseDisk &disk, const std::string &path) -> NBDone {
        const NBErrnoOr<Node *> node = nodeOf(disk, number);
        if (!node)
            return node.error();
        const NBErrnoOr<std::string> oldPath = disk.checkedPathOf(**node);
        if (!oldPath)
            return oldPath.error();
        return disk.tree.hardLink(*oldPath, path);
    });
}

// Removes a name with `remove(path)`.
template <class Remove>
void removeItem(fuse_req_t request, fuse_ino_t folder, const char *name, Remove remove)
{
    answerDone(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        const NBErrnoOr<std::string> path = pathFor(disk, folder, name);
        if (!path)
            return path.error();
        const NBDone removed = remove(disk, *path);
        if (removed)
            disk.nodes.nameRemoved(*disk.nodes.find(folder), name);
        return removed;
    });
}

void removeFile(fuse_req_t request, fuse_ino_t folder, const char *name)
{
    removeItem(request, folder, name,
               [](FuseDisk &disk, const std::string &path) { return disk.tree.removeFile(path); });
}

void removeFolder(fuse_req_t request, fuse_ino_t folder, const char *name)
{
    removeItem(request, folder, name, [](FuseDisk &disk, const std::string &path) {
        return disk.tree.removeFolder(path);
    });
}

void move(fuse_req_t request, fuse_ino_t folder, const char *name, fuse_ino_t newFolder,
          const char *newName, unsigned flags)
{
    answerDone(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        const NBErrnoOr<std::string> path = pathFor(disk, folder, name);
        if (!path)
            return path.error();
        const NBErrnoOr<std::string> newPath = pathFor(disk, newFolder, newName);
        if (!newPath)
            return newPath.error();
        const NBDone moved = disk.tree.move(*path, *newPath, flags);
        if (!moved)
            return moved;
        Node &from = *disk.nodes.find(folder);
        Node &to = *disk.nodes.find(newFolder);
        if ((flags & RENAME_EXCHANGE) != 0)
            disk.nodes.namesExchanged(from, name, to, newName);
        else
            disk.nodes.nameMoved(from, name, to, newName);
        return {};
    });
}

void readLink(fuse_req_t request, fuse_ino_t number)
{
    answer(request, [&]() -> NBDone {
        FuseDisk &disk = diskOf(request);
        const NBErrnoOr<Node *> node = nodeOf(disk, number);
        if (!node)
            return node.error();
        const NBErrnoOr<std::string> path = disk.checkedPathOf(**node);
        if (!path)
            return path.error();
        const NBErrnoOr<std::string> target = disk.tree.linkTarget(*path);
        if (!target)
            return target.error();
        fuse_reply_readlink(request, target->c_str());
        return {};
    });
}

} // namespace

void addNameOperations(fuse_lowlevel_ops &operations)
{
    operations.lookup = lookup;
    operations.forget = forget;
    operations.forget_multi = forgetMulti;
    operations.mknod = makeNode;
    operations.mkdir = makeFolder;
    operations.symlink = makeLink;
    operations.link = hardLink;
    operations.unlink = removeFile;
    operations.rmdir = removeFolder;
    operations.rename = move;
    operations.readlink = readLink;
}

} // namespace nimbrel
