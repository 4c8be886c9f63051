#pragma once

#include <cstdint>
#include <string>

namespace nimbrel {

// Where the kernel finds an item: the folder's node number and the plain name there.
struct NodePlace
{
    std::uint64_t folder;
    std::string name;
    bool operator==(const NodePlace &) const = default;
};

} // namespace nimbrel
