#include "fs/NodeIdentities.h"

#include <algorithm>
#include <utility>

namespace nimbrel {

namespace {

constexpr std::size_t firstBuckets = 64;
// Asked for new names alone, so that longer chains are worth their memory.
constexpr std::size_t nodesPerBucket = 2;

std::size_t hashOf(std::uint64_t device, std::uint64_t inode) noexcept
{
    constexpr std::uint64_t spread = 0x9E3779B97F4A7C15U;
    const std::uint64_t mixed = (inode + device * 0xC2B2AE3D27D4EB4FU) * spread;
    return mixed >> 32U;
}

} // namespace

bool NodeIdentities::isItem(const Node &node, const struct stat &attributes) noexcept
{
    return node.isIdentity && node.inode == attributes.st_ino && node.device == attributes.st_dev &&
           node.type == (attributes.st_mode & S_IFMT);
}

Node *NodeIdentities::find(const struct stat &attributes) const noexcept
{
    Node *const node = find(attributes.st_dev, attributes.st_ino);
    return node != nullptr && isItem(*node, attributes) ? node : nullptr;
}

Node *NodeIdentities::find(std::uint64_t device, std::uint64_t inode) const noexcept
{
    if (_buckets.empty())
        return nullptr;
    NodeSlot slot = _buckets[hashOf(device, inode) & (_buckets.size() - 1)];
    while (slot != noSlot) {
        Node &node = _pool.at(slot);
        if (node.inode == inode && node.device == device)
            return &node;
        slot = node.next;
    }
    return nullptr;
}

void NodeIdentities::add(Node &node)
{
    if (Node *const other = find(node.device, node.inode); other != nullptr)
        remove(*other);
    if (_size >= _buckets.size() * nodesPerBucket)
        grow();
    push(node);
    node.isIdentity = true;
    ++_size;
}

void NodeIdentities::remove(Node &node) noexcept
{
    if (!node.isIdentity)
        return;
    NodeSlot *link = bucketOf(node.device, node.inode);
    while (&_pool.at(*link) != &node)
        link = &_pool.at(*link).next;
    *link = std::exchange(node.next, noSlot);
    node.isIdentity = false;
    --_size;
}

NodeSlot *NodeIdentities::bucketOf(std::uint64_t device, std::uint64_t inode) noexcept
{
    return &_buckets[hashOf(device, inode) & (_buckets.size() - 1)];
}

void NodeIdentities::push(Node &node) noexcept
{
    node.next = std::exchange(*bucketOf(node.device, node.inode), NodePool::slotOf(node.number));
}

void NodeIdentities::grow()
{
    std::vector<NodeSlot> old(std::max(firstBuckets, _buckets.size() * 2));
    old.swap(_buckets);
    for (NodeSlot slot : old)
        while (slot != noSlot) {
            Node &node = _pool.at(slot);
            slot = node.next;
            push(node);
        }
}

} // namespace nimbrel
