// Whole files in one call; all throw std::runtime_error with the path and the cause.
#pragma once

#include "crypto/Bytes.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace nimbrel::test {

[[nodiscard]] std::string readFile(const std::string &path);
void writeFile(const std::string &path, std::string_view text);

// A file of tests/data.
[[nodiscard]] std::string dataFile(std::string_view name);

[[nodiscard]] std::string toHex(ByteView bytes);
[[nodiscard]] Bytes fromHex(std::string_view hex);

// `size` bytes that follow from `seed` alone.
[[nodiscard]] std::string noise(std::size_t size, std::uint64_t seed);

} // namespace nimbrel::test
