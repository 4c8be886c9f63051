// The byte buffers that all layers share.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace nimbrel {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>; // bytes of somebody else, to read
using ByteSpan = std::span<std::uint8_t>;       // bytes of somebody else, to change

// The bytes of a text, as they stand (UTF-8 where the text is UTF-8).
inline ByteView bytesOf(std::string_view text) noexcept
{
    return {reinterpret_cast<const std::uint8_t *>(text.data()), text.size()};
}

// The text that these bytes are; nothing is checked.
inline std::string_view textOf(ByteView bytes) noexcept
{
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

} // namespace nimbrel
