// The names of all nodes, found by the folder and the name there.
#pragma once

#include "fs/Node.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace nimbrel {

// One name of a node: the folder it stands in and the plain name there, which lies behind this
// object in the same piece of memory.
struct NodeName
{
    NodeName *nextInBucket;
    NodeName *nextOfNode;
    NodeSlot node;
    NodeSlot folder;
    std::uint32_t hash;
    std::uint32_t length;

    [[nodiscard]] std::string_view text() const noexcept
    {
        return {reinterpret_cast<const char *>(this + 1), length};
    }
};

// Owns the names. Which names a node has is the table's affair.
class NodeNames final
{
public:
    NodeNames() = default;
    ~NodeNames();
    NodeNames(const NodeNames &) = delete;
    NodeNames &operator=(const NodeNames &) = delete;

    [[nodiscard]] NodeName *find(NodeSlot folder, std::string_view text) const noexcept;
    // Only for a name that isn't there.
    [[nodiscard]] NodeName &add(NodeSlot node, NodeSlot folder, std::string_view text);
    void remove(NodeName &name) noexcept;

    // Memory of the names, as the allocator counts it.
    [[nodiscard]] std::size_t bytes() const noexcept { return _bytes; }

private:
    [[nodiscard]] NodeName *&bucketOf(std::uint32_t hash) noexcept
    {
        return _buckets[hash & (_buckets.size() - 1)];
    }
    void grow();

    std::vector<NodeName *> _buckets; // a power of two of them, or none yet
    std::size_t _size = 0;
    std::size_t _bytes = 0;
};

} // namespace nimbrel
