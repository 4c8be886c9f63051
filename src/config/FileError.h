#pragma once

#include <string>

namespace nimbrel {

// Why a file could not be written, for the user.
struct FileError
{
    int code = 0;        // errno, or 0 when no system call failed
    std::string message; // names the file and the cause
};

} // namespace nimbrel
