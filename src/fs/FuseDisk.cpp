#include "fs/FuseDisk.h"

namespace nimbrel {

FuseDisk::FuseDisk(std::shared_ptr<NBNimbrelFS> filesystem)
    : delegate(std::move(filesystem)), tree(*delegate), content(*delegate)
{
}

NBErrnoOr<struct stat> FuseDisk::attributesOf(Node &node)
{
    // The kernel often asks without a handle, also about a file that has no name any more.
    if (node.isOpen())
        return tree.attributes(node.openFiles().front()->handle);
    const NBErrnoOr<std::string> path = nodes.pathOf(node);
    if (!path)
        return path.error();
    NBErrnoOr<struct stat> attributes = tree.attributes(*path);
    if (&node == &nodes.root())
        return attributes;
    if (attributes.code() == ENOENT || attributes.code() == ENOTDIR)
        return NBErrno{ESTALE};
    if (attributes && !isSameItem(node, *attributes))
        return NBErrno{ESTALE};
    return attributes;
}

NBErrnoOr<std::string> FuseDisk::checkedPathOf(Node &node)
{
    NBErrnoOr<std::string> path = nodes.pathOf(node);
    if (!path || &node == &nodes.root())
        return path;
    const NBErrnoOr<struct stat> attributes = tree.attributes(*path);
    if (attributes.code() == ENOENT || attributes.code() == ENOTDIR)
        return NBErrno{ESTALE};
    if (!attributes)
        return attributes.error();
    if (!isSameItem(node, *attributes))
        return NBErrno{ESTALE};
    return path;
}

} // namespace nimbrel
