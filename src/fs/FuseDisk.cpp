#include "fs/FuseDisk.h"

#include <algorithm>

namespace nimbrel {

namespace {

constexpr std::size_t mostCachedPaths = 5'000; // some 1 MiB; the purge comes every 30 seconds
constexpr std::size_t placesAtOnce = 64;

} // namespace

FuseDisk::FuseDisk(std::shared_ptr<NBNimbrelFS> filesystem, bool lettingOthersIn)
    : isShared(lettingOthersIn), delegate(std::move(filesystem)), tree(*delegate),
      content(*delegate)
{
    tree.setIsCheckedByKernel(isShared);
    tree.lookForAccessLists();
}

void FuseDisk::boundMemory()
{
    constexpr unsigned looksApart = 256; // a look takes the cache's lock
    if (++_itemsSinceLook % looksApart == 0 && delegate->cachedPaths() > mostCachedPaths)
        delegate->purgePathCache();
    if (reclaimer == nullptr)
        return;
    std::vector<NodePlace> places = nodes.reclaimable(std::min(placesAtOnce, reclaimer->room()));
    if (!places.empty())
        reclaimer->offer(std::move(places));
}

NBErrnoOr<struct stat> FuseDisk::attributesOf(Node &node)
{
    // The kernel often asks without a handle, also about a file that has no name any more.
    if (node.isOpen())
        return tree.attributes(node.openFiles().front()->handle);
    if (const NBDone known = nodes.pathInto(node, path); !known)
        return known.error();
    NBErrnoOr<struct stat> attributes = tree.attributes(path);
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
    NBErrnoOr<std::string> known = nodes.pathOf(node);
    if (!known || &node == &nodes.root())
        return known;
    const NBErrnoOr<struct stat> attributes = tree.attributes(*known);
    if (attributes.code() == ENOENT || attributes.code() == ENOTDIR)
        return NBErrno{ESTALE};
    if (!attributes)
        return attributes.error();
    if (!isSameItem(node, *attributes))
        return NBErrno{ESTALE};
    return known;
}

} // namespace nimbrel
