#include "cli/DiskPath.h"

#include "cli/CommandError.h"
#include "fs/MountTable.h"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>

namespace nimbrel {

namespace {

namespace files = std::filesystem;

[[noreturn]] void fail(const std::string &path, const std::error_code &error)
{
    throw CommandError(ExitStatus::MountPointTrouble,
                       fmt::format("{} can't be found: {}", path, error.message()),
                       "Check the path");
}

files::path canonical(const files::path &path, const std::string &given)
{
    std::error_code error;
    files::path found = files::canonical(path, error);
    if (error)
        fail(given, error);
    return found;
}

files::path withoutFinalSlashes(files::path path)
{
    while (!path.has_filename() && path.has_relative_path())
        path = path.parent_path();
    return path;
}

} // namespace

std::string mountPointMeantBy(const std::string &path)
{
    if (path.empty())
        throw CommandError(ExitStatus::MountPointTrouble, "The mount point is empty",
                           "Give the path of a mounted disk");
    const files::path given = withoutFinalSlashes(path);
    const files::path name = given.filename();
    if (name.empty() || name == "." || name == "..")
        return canonical(given, path);
    const files::path parent = given.has_parent_path() ? given.parent_path() : files::path(".");
    const files::path candidate = canonical(parent, path) / name;
    if (mountAt(candidate))
        return candidate;
    return canonical(candidate, path); // not a disk by itself, perhaps a link to one
}

} // namespace nimbrel
