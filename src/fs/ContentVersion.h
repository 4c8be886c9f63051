#pragma once

#include <cstdint>
#include <sys/stat.h>

namespace nimbrel {

// The state of an item's content on disk that the kernel's page cache was filled from.
struct ContentVersion
{
    std::uint64_t modified = 0; // nanoseconds; times out of their range wrap around
    std::uint64_t changed = 0;
    off_t size = -1;

    [[nodiscard]] static ContentVersion of(const struct stat &attributes) noexcept;
    bool operator==(const ContentVersion &) const = default;
    // Tells two states apart in less room; never 0.
    [[nodiscard]] std::uint64_t digest() const noexcept;
};

} // namespace nimbrel
