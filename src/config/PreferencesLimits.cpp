#include "config/PreferencesLimits.h"

#include <cstdint>
#include <fmt/format.h>

namespace nimbrel {

namespace {

constexpr std::int64_t minimumBlockSize = 16; // one block of the cipher
constexpr std::int64_t maximumBlockSize = std::int64_t{64} << 20U;
constexpr std::int64_t minimumIterations = 1;
constexpr std::int64_t maximumIterations = 10'000'000; // some seconds of work

} // namespace

std::optional<std::string> judgeLimits(const NBPreferencesDictionary &preferences)
{
    const auto blockSize = preferences.integer(preferenceKey::blockSize);
    if (blockSize && (*blockSize < minimumBlockSize || *blockSize > maximumBlockSize))
        return fmt::format("The block size {} is not from {} to {} bytes.", *blockSize,
                           minimumBlockSize, maximumBlockSize);
    const auto iterations = preferences.integer(preferenceKey::kdfIterations);
    if (iterations && (*iterations < minimumIterations || *iterations > maximumIterations))
        return fmt::format("The number of key iterations {} is not from {} to {}.", *iterations,
                           minimumIterations, maximumIterations);
    return std::nullopt;
}

} // namespace nimbrel
