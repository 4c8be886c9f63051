// Why nothing is known of updates.
#pragma once

#include <QString>

namespace nimbrel {

struct UpdateFailure
{
    enum class Cause
    {
        Disk,       // a disk on which clients keep their files doesn't answer
        Offline,    // the host isn't known, or can't be reached
        Timeout,    // too slow
        Insecure,   // no trusted connection
        Redirected, // sent on to where nobody may be asked
        Status,     // the server says no; `detail` is the number
        TooBig,     // more than a feed has
        NotAFeed,   // not a list of versions
        Broken      // anything else on the way
    };

    Cause cause = Cause::Broken;
    QString detail = {}; // foreign text: what Qt or the reader says

    // One line for the system log.
    [[nodiscard]] QString line(const QString &host) const;
    // For the person: what went wrong with `host`, and what to do.
    [[nodiscard]] QString explanation(const QString &host) const;
};

} // namespace nimbrel
