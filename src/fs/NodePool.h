// Where the nodes live.
#pragma once

#include "fs/Node.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace nimbrel {

// A node stays at its address until it is released. Its number holds its slot, so that it is found
// without a search, below a count of all nodes ever made, so that no number is used twice.
class NodePool final
{
public:
    static constexpr unsigned slotBits = 24; // 16 million items at once, a trillion over time

    // A node with a number of its own; the first one's is 1.
    [[nodiscard]] Node &make();
    void release(Node &node) noexcept;

    // Null for a number that isn't, or no longer, a node's.
    [[nodiscard]] Node *find(std::uint64_t number) noexcept;
    [[nodiscard]] Node &at(NodeSlot slot) noexcept
    {
        return _chunks[slot / perChunk][slot % perChunk];
    }
    [[nodiscard]] const Node &at(NodeSlot slot) const noexcept
    {
        return _chunks[slot / perChunk][slot % perChunk];
    }
    [[nodiscard]] static NodeSlot slotOf(std::uint64_t number) noexcept
    {
        return static_cast<NodeSlot>(number & slotMask);
    }

    [[nodiscard]] std::size_t size() const noexcept { return _size; }
    // All nodes, and free places, have slots below this one.
    [[nodiscard]] NodeSlot endSlot() const noexcept { return _end; }

private:
    static constexpr std::uint64_t slotMask = (std::uint64_t{1} << slotBits) - 1;
    static constexpr std::size_t perChunk = 512;

    [[nodiscard]] NodeSlot freeSlot();

    std::vector<std::unique_ptr<Node[]>> _chunks;
    NodeSlot _end = 1; // slot 0 is nobody's
    NodeSlot _free = noSlot;
    std::size_t _size = 0;
    std::uint64_t _made = 0;
};

} // namespace nimbrel
