// Which items the kernel should forget when there are too many.
//
// A hand goes round all nodes. What was asked about since it last passed gets a second chance.
#include "fs/NodeTable.h"

#include <algorithm>

namespace nimbrel {

namespace {

constexpr std::size_t stepsPerPlace = 8;  // how far the hand goes for one, at most
constexpr std::size_t batchesInKept = 32; // some at once, not one for each new item
// Beside its names: the node itself and its share of the searches.
constexpr std::size_t bytesOfNode = sizeof(Node) + 12;

} // namespace

void NodeTable::noteUse(Node &node) noexcept
{
    node.wasUsed = true;
    takeBackOffer(node);
}

void NodeTable::takeBackOffer(Node &node) noexcept
{
    if (node.isOffered)
        --_offered;
    node.isOffered = false;
}

// What stays when the kernel does as it was asked.
std::size_t NodeTable::expected() const noexcept
{
    return size() - _offered;
}

std::size_t NodeTable::itemsToKeep() const noexcept
{
    const std::size_t average = bytesOfNode + _names.bytes() / size();
    return std::min(_itemsToKeep, bytesKept / average);
}

std::vector<NodePlace> NodeTable::reclaimable(std::size_t most)
{
    std::vector<NodePlace> places;
    const std::size_t kept = itemsToKeep();
    if (expected() <= kept)
        return places;
    const std::size_t wanted = kept - kept / batchesInKept;
    const bool withFolders = _folders > kept / 4 * 3;
    // A round at most: a second chance lasts until the next one.
    const std::size_t steps = std::min<std::size_t>(most * stepsPerPlace, _pool.endSlot());
    for (std::size_t step = 0; step < steps; ++step) {
        if (places.size() >= most || expected() <= wanted)
            break;
        if (Node &node = nextAtHand(); isReclaimable(node, withFolders))
            offer(node, places);
    }
    return places;
}

Node &NodeTable::nextAtHand() noexcept
{
    if (++_hand >= _pool.endSlot())
        _hand = NodePool::slotOf(rootNumber);
    return _pool.at(_hand);
}

bool NodeTable::isReclaimable(Node &node, bool withFolders) noexcept
{
    // Offered a whole round ago: the kernel uses it.
    takeBackOffer(node);
    if (node.lookups == 0 || node.children != 0 || !node.isLinked() || node.isOpen())
        return false;
    if (node.isFolder() && !withFolders)
        return false;
    const bool hasSecondChance = node.wasUsed;
    node.wasUsed = false;
    return !hasSecondChance;
}

void NodeTable::offer(Node &node, std::vector<NodePlace> &places)
{
    // The kernel keeps a node while it keeps one of its names.
    for (const NodeName *name = node.names; name != nullptr; name = name->nextOfNode)
        places.push_back({_pool.at(name->folder).number, std::string(name->text())});
    node.isOffered = true;
    ++_offered;
}

} // namespace nimbrel
