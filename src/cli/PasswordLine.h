// A password read without leaving it anywhere but in a SecureBuffer.
#pragma once

#include "crypto/SecureBuffer.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace nimbrel {

// Puts the next byte where it is told; false at the end.
using ByteReader = std::function<bool(std::uint8_t &)>;

// The first line, without its newline; what stands behind it isn't touched. Nothing when there
// isn't one byte. Throws CommandError when the line is too long.
[[nodiscard]] std::optional<SecureBuffer> readFirstLine(const ByteReader &nextByte);

// Reads from `descriptor`; throws CommandError, which calls it `name`, when that fails.
[[nodiscard]] ByteReader bytesOfDescriptor(int descriptor, std::string name);

// The first line of the file; "-" is standard input, whose next line the next call gets.
[[nodiscard]] SecureBuffer passwordOfFile(const std::string &path);
// The first line that `sh -c command` prints. A command that fails gives no password.
[[nodiscard]] SecureBuffer passwordOfCommand(const std::string &command);

} // namespace nimbrel
