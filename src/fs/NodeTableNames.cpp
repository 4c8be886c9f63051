// Which names a node has.
#include "fs/NodeTable.h"
#include "fs/NodeTableHold.h"

#include <utility>

namespace nimbrel {

NodeName *NodeTable::findName(const Node &folder, std::string_view name) const noexcept
{
    return _names.find(NodePool::slotOf(folder.number), name);
}

void NodeTable::addName(Node &node, Node &folder, std::string_view name)
{
    if (NodeName *const known = findName(folder, name); known != nullptr) {
        if (&_pool.at(known->node) == &node)
            return;
        // Somebody put another item under this name, or a folder that the kernel knew elsewhere.
        dropName(*known);
    }
    linkName(node,
             _names.add(NodePool::slotOf(node.number), NodePool::slotOf(folder.number), name));
    ++folder.children;
    while (node.isFolder() && node.names->nextOfNode != nullptr)
        dropIfUnused(detachName(*node.names->nextOfNode)); // a folder has one name
}

// The newest name first: an older one may have been moved away from outside.
void NodeTable::linkName(Node &node, NodeName &name) noexcept
{
    name.node = NodePool::slotOf(node.number);
    name.nextOfNode = std::exchange(node.names, &name);
}

void NodeTable::unlinkName(NodeName &name) noexcept
{
    NodeName **link = &_pool.at(name.node).names;
    while (*link != &name)
        link = &(*link)->nextOfNode;
    *link = name.nextOfNode;
}

// Takes one name off its node and gives the folder that it stood in.
Node &NodeTable::detachName(NodeName &name) noexcept
{
    Node &folder = _pool.at(name.folder);
    unlinkName(name);
    _names.remove(name);
    --folder.children;
    return folder;
}

void NodeTable::dropName(NodeName &name) noexcept
{
    Node &node = _pool.at(name.node);
    const Hold folderStays(*this, _pool.at(name.folder));
    const Hold nodeStays(*this, node);
    (void)detachName(name);
    leaveIdentitiesIfGone(node);
}

void NodeTable::nameRemoved(Node &folder, std::string_view name)
{
    if (NodeName *const found = findName(folder, name); found != nullptr)
        dropName(*found);
}

void NodeTable::nameMoved(Node &folder, std::string_view name, Node &newFolder,
                          std::string_view newName)
{
    if (&folder == &newFolder && name == newName)
        return;
    const NodeName *const found = findName(folder, name);
    if (found == nullptr)
        return nameRemoved(newFolder, newName);
    // The new name stands before the old one goes: the node's identity stays through the move.
    const Hold oldFolderStays(*this, folder);
    const Hold newFolderStays(*this, newFolder);
    Node &node = _pool.at(found->node);
    const Hold nodeStays(*this, node);
    addName(node, newFolder, newName);
    nameRemoved(folder, name);
}

void NodeTable::namesExchanged(Node &folder, std::string_view name, Node &otherFolder,
                               std::string_view otherName)
{
    NodeName *const one = findName(folder, name);
    NodeName *const other = findName(otherFolder, otherName);
    if (one == nullptr || other == nullptr) {
        // Half-known: what isn't known is looked up again.
        nameRemoved(folder, name);
        nameRemoved(otherFolder, otherName);
        return;
    }
    Node &first = _pool.at(one->node);
    Node &second = _pool.at(other->node);
    unlinkName(*one);
    unlinkName(*other);
    linkName(first, *other);
    linkName(second, *one);
}

} // namespace nimbrel
