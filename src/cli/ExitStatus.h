#pragma once

namespace nimbrel {

// What the program ends with; scripts rely on these numbers.
enum class ExitStatus : int
{
    Done = 0,
    Failed = 1,
    Usage = 2,
    WrongPassword = 10,
    FolderRefused = 11, // not an encrypted folder, or one that can't be served
    MountPointTrouble = 12
};

} // namespace nimbrel
