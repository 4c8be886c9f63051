#include "fs/NodeTable.h"

#include "fs/NodeTableHold.h"

#include <algorithm>

namespace nimbrel {

NodeTable::NodeTable(std::size_t itemsToKeep) : _root(&_pool.make()), _itemsToKeep(itemsToKeep)
{
    _root->type = S_IFDIR;
    _root->lookups = 1; // the kernel never forgets it
    ++_folders;
}

Node *NodeTable::find(std::uint64_t number) noexcept
{
    Node *const node = _pool.find(number);
    if (node != nullptr)
        node->wasUsed = true;
    return node;
}

Node &NodeTable::makeNode(const struct stat &attributes)
{
    Node &node = _pool.make();
    node.device = static_cast<std::uint32_t>(attributes.st_dev);
    node.inode = attributes.st_ino;
    node.type = static_cast<std::uint16_t>(attributes.st_mode & S_IFMT);
    if (node.isFolder())
        ++_folders;
    return node;
}

Node &NodeTable::refer(Node &folder, std::string_view name, const struct stat &attributes)
{
    if (const NodeName *const known = findName(folder, name); known != nullptr) {
        Node &node = _pool.at(known->node);
        if (NodeIdentities::isItem(node, attributes)) {
            noteUse(node);
            ++node.lookups;
            return node;
        }
    }
    const Hold folderStays(*this, folder);
    Node *const known = _identities.find(attributes);
    Node &node = known == nullptr ? makeNode(attributes) : *known;
    const Hold nodeStays(*this, node);
    if (known == nullptr)
        _identities.add(node);
    else
        noteUse(node);
    addName(node, folder, name);
    ++node.lookups;
    return node;
}

// The number of an item on disk may be given to a new one as soon as nobody holds it open.
void NodeTable::leaveIdentitiesIfGone(Node &node) noexcept
{
    if (!node.isLinked() && !node.isOpen())
        _identities.remove(node);
}

void NodeTable::dropIfUnused(Node &node) noexcept
{
    Node *next = &node; // up the path, however long it is
    while (next != nullptr && next->lookups == 0 && next->children == 0 && !next->isOpen()) {
        Node &unused = *next;
        // Only what isn't a folder has more names than one: this goes down no further.
        while (unused.isLinked() && unused.names->nextOfNode != nullptr)
            dropIfUnused(detachName(*unused.names));
        next = unused.isLinked() ? &detachName(*unused.names) : nullptr;
        release(unused);
    }
}

void NodeTable::release(Node &node) noexcept
{
    takeBackOffer(node);
    if (node.isFolder())
        --_folders;
    _identities.remove(node);
    _pool.release(node);
}

void NodeTable::forget(std::uint64_t number, std::uint64_t references)
{
    Node *const node = _pool.find(number);
    if (node == nullptr || node == _root)
        return;
    node->lookups -= std::min(node->lookups, references);
    dropIfUnused(*node);
}

void NodeTable::opened(Node &node, OpenFile &file)
{
    node.addOpenFile(file);
}

void NodeTable::closed(Node &node, OpenFile &file)
{
    node.removeOpenFile(file);
    leaveIdentitiesIfGone(node);
    dropIfUnused(node);
}

} // namespace nimbrel
