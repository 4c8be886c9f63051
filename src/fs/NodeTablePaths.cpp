// The way up from a node.
#include "fs/NodeTable.h"

#include <algorithm>

namespace nimbrel {

namespace {

constexpr std::size_t deepestPath = 4096; // components; the kernel's paths are shorter

} // namespace

const Node &NodeTable::folderAbove(const Node &node) const noexcept
{
    return node.isLinked() ? _pool.at(node.names->folder) : node;
}

NBErrnoOr<std::string> NodeTable::pathOf(const Node &node) const
{
    std::string path;
    if (const NBDone done = pathInto(node, path); !done)
        return done.error();
    return path;
}

NBErrnoOr<std::string> NodeTable::pathOf(const Node &folder, std::string_view name) const
{
    std::string path;
    if (const NBDone done = pathInto(folder, name, path); !done)
        return done.error();
    return path;
}

NBDone NodeTable::pathInto(const Node &node, std::string &path) const
{
    const NBErrnoOr<std::size_t> length = lengthOfPath(node);
    if (!length)
        return length.error();
    path.resize(std::max<std::size_t>(*length, 1));
    path.front() = '/';
    writePath(node, path.data() + path.size());
    return {};
}

NBDone NodeTable::pathInto(const Node &folder, std::string_view name, std::string &path) const
{
    const NBErrnoOr<std::size_t> length = lengthOfPath(folder);
    if (!length)
        return length.error();
    path.resize(*length + 1 + name.size());
    char *const end = path.data() + *length;
    *end = '/';
    std::copy(name.begin(), name.end(), end + 1);
    writePath(folder, end);
    return {};
}

// Nothing for the root.
NBErrnoOr<std::size_t> NodeTable::lengthOfPath(const Node &node) const
{
    std::size_t length = 0;
    std::size_t steps = 0;
    for (const Node *step = &node; step != _root; step = &folderAbove(*step)) {
        // Folders that were moved into each other from outside make a ring until they are looked
        // up again.
        if (!step->isLinked() || ++steps > deepestPath)
            return NBErrno{ESTALE};
        length += 1 + step->names->length;
    }
    return length;
}

void NodeTable::writePath(const Node &node, char *end) const noexcept
{
    for (const Node *step = &node; step != _root; step = &folderAbove(*step)) {
        const std::string_view name = step->names->text();
        end = std::copy_backward(name.begin(), name.end(), end);
        *--end = '/';
    }
}

} // namespace nimbrel
