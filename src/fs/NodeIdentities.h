// The nodes, found by what they stand for on disk.
#pragma once

#include "fs/NodePool.h"

#include <cstddef>
#include <vector>

namespace nimbrel {

// One node at most for each device and inode. Chains run through the nodes themselves.
class NodeIdentities final
{
public:
    explicit NodeIdentities(NodePool &pool) noexcept : _pool(pool) {}

    // Whether a node that is in here stands for the item with these attributes.
    [[nodiscard]] static bool isItem(const Node &node, const struct stat &attributes) noexcept;

    [[nodiscard]] Node *find(const struct stat &attributes) const noexcept;
    // Another node of the same device and inode leaves.
    void add(Node &node);
    // No harm when it isn't in here.
    void remove(Node &node) noexcept;

private:
    [[nodiscard]] NodeSlot *bucketOf(std::uint64_t device, std::uint64_t inode) noexcept;
    [[nodiscard]] Node *find(std::uint64_t device, std::uint64_t inode) const noexcept;
    void push(Node &node) noexcept;
    void grow();

    NodePool &_pool;
    std::vector<NodeSlot> _buckets; // a power of two of them, or none yet
    std::size_t _size = 0;
};

} // namespace nimbrel
