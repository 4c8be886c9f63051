// Folders whose listing the kernel may keep over their closing.
#pragma once

#include "fs/NodeTable.h"

#include <chrono>
#include <cstdint>
#include <unordered_map>

namespace nimbrel {

// A listing is kept for a second at most, and only while the folder's times say that nothing was
// added or taken: a cloud client changes it at any time.
class KeptListings final
{
public:
    using Clock = std::chrono::steady_clock;

    // Asked when a folder with these attributes is opened: whether what the kernel read of it
    // since it was opened first is still what stands there.
    [[nodiscard]] bool keeps(std::uint64_t folder, const struct stat &attributes,
                             Clock::time_point now = Clock::now());

private:
    struct Kept
    {
        ContentVersion version;
        Clock::time_point since;
    };

    std::unordered_map<std::uint64_t, Kept> _kept;
};

// Whether a change from now on would show in these times: stores count in steps, of which one may
// still last.
[[nodiscard]] bool isSettled(const struct stat &attributes);

} // namespace nimbrel
