#include "cli/NewFolder.h"

#include "cli/CommandError.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>

namespace nimbrel {

namespace {

namespace files = std::filesystem;

[[noreturn]] void fail(const std::string &path, const std::error_code &error)
{
    throw CommandError(ExitStatus::Failed,
                       fmt::format("{} can't be made: {}", path, error.message()),
                       "Choose another place");
}

} // namespace

void NewFolder::requirePlaceFor(const std::string &path)
{
    std::error_code error;
    const files::file_status status = files::symlink_status(path, error);
    if (status.type() == files::file_type::not_found)
        return;
    if (error)
        fail(path, error);
    if (!files::is_directory(path, error))
        throw CommandError(ExitStatus::Failed, path + " exists and is not a folder",
                           "Choose another name");
    const bool isEmpty = files::is_empty(path, error);
    if (error)
        fail(path, error);
    if (!isEmpty)
        throw CommandError(ExitStatus::Failed, path + " is not empty",
                           "Give a new or an empty folder; move files in once it is mounted");
}

NewFolder::NewFolder(const std::string &path)
{
    requirePlaceFor(path);
    makeWithParents(files::absolute(path));
    _path = files::canonical(path);
}

NewFolder::MadePaths::~MadePaths()
{
    // A leftover is better than an error that hides the first one.
    std::for_each(paths.rbegin(), paths.rend(), [](const std::string &path) {
        std::error_code ignored;
        files::remove(path, ignored);
    });
}

std::string NewFolder::willHold(std::string_view name)
{
    return _made.paths.emplace_back(fmt::format("{}/{}", _path, name));
}

void NewFolder::makeWithParents(const std::string &path)
{
    files::path grown;
    for (const files::path &part : files::path(path)) {
        grown /= part;
        if (::mkdir(grown.c_str(), 0777) == 0) {
            _made.paths.push_back(grown);
            continue;
        }
        // Something that is there and isn't a folder.
        const int code = errno == EEXIST ? ENOTDIR : errno;
        if (std::error_code ignored; !files::is_directory(grown, ignored))
            fail(path, {code, std::generic_category()});
    }
}

} // namespace nimbrel
