#pragma once

#include <QLockFile>
#include <QString>

#include <optional>

namespace nimbrel {

// Keeps a second application of the same user away that the session bus doesn't know of: in another
// session, or without a bus. Two would overwrite each other's list of volumes. Held until the
// process ends, however it does.
class InstanceLock final
{
public:
    InstanceLock();

    // Nothing when this is the only one, else why the program can't go on, for the user. A folder
    // that can't be written doesn't keep the program from running.
    [[nodiscard]] std::optional<QString> take();

private:
    QLockFile _file;
};

} // namespace nimbrel
