#include "fs/FuseRequest.h"

#include <sys/stat.h>

namespace nimbrel {

Creator creatorOf(fuse_req_t request)
{
    const fuse_ctx *context = fuse_req_ctx(request);
    std::optional<mode_t> &known = diskOf(request).umask;
    if (known != context->umask)
        ::umask(context->umask);
    known = context->umask;
    return {context->uid, context->gid};
}

NBErrnoOr<Node *> nodeOf(FuseDisk &disk, fuse_ino_t number)
{
    Node *node = disk.nodes.find(number);
    if (node == nullptr)
        return NBErrno{ESTALE};
    return node;
}

fuse_entry_param entryFor(FuseDisk &disk, Node &folder, std::string_view name,
                          const struct stat &attributes)
{
    Node &node = disk.nodes.refer(folder, name, attributes);
    node.told = ContentVersion::of(attributes).digest();
    disk.boundMemory();
    fuse_entry_param entry{};
    entry.ino = node.number;
    entry.generation = 1;
    entry.attr = attributes;
    entry.attr_timeout = attributesStay;
    entry.entry_timeout = attributesStay;
    return entry;
}

NBDone replyEntry(fuse_req_t request, Node &folder, const char *name)
{
    FuseDisk &disk = diskOf(request);
    if (const NBDone known = disk.nodes.pathInto(folder, name, disk.path); !known)
        return known;
    const NBErrnoOr<struct stat> attributes = disk.tree.attributes(disk.path);
    if (!attributes)
        return attributes.error();
    const fuse_entry_param entry = entryFor(disk, folder, name, *attributes);
    if (fuse_reply_entry(request, &entry) != 0)
        disk.nodes.forget(entry.ino, 1);
    return {};
}

} // namespace nimbrel
