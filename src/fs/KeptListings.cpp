#include "fs/KeptListings.h"

#include <ctime>

namespace nimbrel {

namespace {

constexpr std::chrono::seconds longest{1};
constexpr std::size_t mostKept = 256; // folders

constexpr std::chrono::nanoseconds usualStep = std::chrono::milliseconds(20);
constexpr std::chrono::nanoseconds coarseStep = std::chrono::seconds(2);

std::chrono::nanoseconds asDuration(const timespec &time)
{
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

bool isSettled(const struct stat &attributes)
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const bool isCoarse = attributes.st_mtim.tv_nsec == 0;
    return asDuration(now) - asDuration(attributes.st_mtim) > (isCoarse ? coarseStep : usualStep);
}

bool KeptListings::keeps(std::uint64_t folder, const struct stat &attributes, Clock::time_point now)
{
    const ContentVersion version = ContentVersion::of(attributes);
    const auto found = _kept.find(folder);
    if (found != _kept.end() && found->second.version == version &&
        now - found->second.since < longest)
        return true;
    if (_kept.size() >= mostKept)
        _kept.clear();
    if (isSettled(attributes))
        _kept.insert_or_assign(folder, Kept{version, now});
    else
        _kept.erase(folder);
    return false;
}

} // namespace nimbrel
