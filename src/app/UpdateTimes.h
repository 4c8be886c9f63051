#pragma once

#include <QDateTime>

#include <algorithm>
#include <chrono>

namespace nimbrel {

// When the search for updates does what; tests are shorter.
struct UpdateTimes
{
    std::chrono::milliseconds afterStart = std::chrono::seconds(8); // mounts come first
    std::chrono::milliseconds between = std::chrono::hours(24);
    std::chrono::milliseconds afterFailure = std::chrono::hours(1);
    std::chrono::milliseconds limit =
        std::chrono::seconds(30); // for disks, and again for the server

    // How long until the next check is due; none or a negative time: it is. A last check in the
    // future says nothing: a clock was wrong.
    [[nodiscard]] std::chrono::milliseconds until(const QDateTime &lastCheck,
                                                  const QDateTime &now) const
    {
        if (!lastCheck.isValid() || lastCheck > now)
            return std::chrono::milliseconds(0);
        return between - std::chrono::milliseconds(lastCheck.msecsTo(now));
    }

    // How long to sleep before looking at the clock again. Not longer than an hour: timers stand
    // still while the machine sleeps.
    [[nodiscard]] std::chrono::milliseconds sleepUntil(const QDateTime &lastCheck,
                                                       const QDateTime &now) const
    {
        return std::clamp(until(lastCheck, now), std::chrono::milliseconds(0), afterFailure);
    }
};

} // namespace nimbrel
