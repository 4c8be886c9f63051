#include "fs/NodeNames.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

namespace nimbrel {

namespace {

constexpr std::size_t firstBuckets = 64;

std::uint32_t hashOf(NodeSlot folder, std::string_view text) noexcept
{
    constexpr std::uint64_t spread = 0x9E3779B97F4A7C15U;
    return static_cast<std::uint32_t>((std::hash<std::string_view>()(text) + folder * spread) >>
                                      32U);
}

NodeName *makeName(NodeSlot node, NodeSlot folder, std::uint32_t hash, std::string_view text)
{
    if (text.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("a name");
    void *const memory = ::operator new(sizeof(NodeName) + text.size());
    std::copy(text.begin(), text.end(), static_cast<char *>(memory) + sizeof(NodeName));
    return new (memory)
        NodeName{nullptr, nullptr, node, folder, hash, static_cast<std::uint32_t>(text.size())};
}

void freeName(NodeName *name) noexcept
{
    ::operator delete(name);
}

std::size_t bytesOf(const NodeName &name) noexcept
{
    constexpr std::size_t header = 8;
    constexpr std::size_t step = 16;
    return (sizeof(NodeName) + name.length + header + step - 1) / step * step;
}

} // namespace

NodeNames::~NodeNames()
{
    for (NodeName *name : _buckets)
        while (name != nullptr)
            freeName(std::exchange(name, name->nextInBucket));
}

NodeName *NodeNames::find(NodeSlot folder, std::string_view text) const noexcept
{
    if (_buckets.empty())
        return nullptr;
    const std::uint32_t hash = hashOf(folder, text);
    NodeName *name = _buckets[hash & (_buckets.size() - 1)];
    while (name != nullptr &&
           !(name->hash == hash && name->folder == folder && name->text() == text))
        name = name->nextInBucket;
    return name;
}

NodeName &NodeNames::add(NodeSlot node, NodeSlot folder, std::string_view text)
{
    if (_size >= _buckets.size())
        grow();
    NodeName *const name = makeName(node, folder, hashOf(folder, text), text);
    name->nextInBucket = std::exchange(bucketOf(name->hash), name);
    ++_size;
    _bytes += bytesOf(*name);
    return *name;
}

void NodeNames::remove(NodeName &name) noexcept
{
    NodeName **link = &bucketOf(name.hash);
    while (*link != &name)
        link = &(*link)->nextInBucket;
    *link = name.nextInBucket;
    --_size;
    _bytes -= bytesOf(name);
    freeName(&name);
}

void NodeNames::grow()
{
    std::vector<NodeName *> old(std::max(firstBuckets, _buckets.size() * 2));
    old.swap(_buckets);
    for (NodeName *name : old)
        while (name != nullptr) {
            NodeName *const next = name->nextInBucket;
            name->nextInBucket = std::exchange(bucketOf(name->hash), name);
            name = next;
        }
}

} // namespace nimbrel
