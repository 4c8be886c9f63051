#include "fs/NodePool.h"

#include <new>

namespace nimbrel {

Node &NodePool::make()
{
    const NodeSlot slot = freeSlot();
    Node &node = at(slot);
    node.number = (_made++ << slotBits) | slot;
    ++_size;
    return node;
}

NodeSlot NodePool::freeSlot()
{
    if (_free != noSlot) {
        const NodeSlot slot = _free;
        _free = at(slot).next;
        at(slot).next = noSlot;
        return slot;
    }
    if (_end > slotMask)
        throw std::bad_alloc();
    if (_end / perChunk >= _chunks.size())
        _chunks.push_back(std::make_unique<Node[]>(perChunk));
    return _end++;
}

void NodePool::release(Node &node) noexcept
{
    const NodeSlot slot = slotOf(node.number);
    node = Node();
    node.next = _free;
    _free = slot;
    --_size;
}

Node *NodePool::find(std::uint64_t number) noexcept
{
    const NodeSlot slot = slotOf(number);
    if (slot == noSlot || slot >= _end)
        return nullptr;
    Node &node = at(slot);
    return node.number == number ? &node : nullptr;
}

} // namespace nimbrel
