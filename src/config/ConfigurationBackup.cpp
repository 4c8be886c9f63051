#include "config/ConfigurationBackup.h"

#include "config/BoundedFile.h"
#include "config/FileWork.h"
#include "config/UniqueFd.h"
#include "config/XmlReader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <pwd.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <variant>
#include <vector>

namespace nimbrel {

namespace {

constexpr std::size_t keptBackups = 20; // for each folder name
constexpr std::string_view extension = ".xml";

// What the environment or the user database says, where it is an absolute path; else empty.
std::string absoluteVariable(const char *name)
{
    const char *const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value != nullptr && *value == '/' ? value : "";
}

std::string homeFolder()
{
    if (std::string home = absoluteVariable("HOME"); !home.empty())
        return home;
    std::array<char, 16384> buffer{};
    passwd entry = {};
    passwd *found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 ||
        found == nullptr || found->pw_dir == nullptr || *found->pw_dir != '/')
        return "";
    return found->pw_dir;
}

// The name of the folder that the configuration lies in, short enough to have a time behind it.
std::string backupPrefix(const std::string &path)
{
    constexpr std::size_t maximumLength = 200;
    const auto folder = std::filesystem::absolute(path).lexically_normal().parent_path();
    std::string name = folder.filename().string().substr(0, maximumLength);
    return (name.empty() ? "root" : name) + " ";
}

// Of the given moment, in UTC; such texts sort by their time.
std::string timeText(std::chrono::system_clock::time_point moment)
{
    const auto seconds = std::chrono::floor<std::chrono::seconds>(moment);
    const auto fraction =
        std::chrono::duration_cast<std::chrono::nanoseconds>(moment - seconds).count();
    return fmt::format("{:%Y%m%dT%H%M%S}.{:09}Z",
                       fmt::gmtime(std::chrono::system_clock::to_time_t(seconds)), fraction);
}

// True for the name of a backup with that prefix, and not for one of a folder whose name only
// begins so.
bool isBackupName(std::string_view name, std::string_view prefix)
{
    constexpr std::string_view form = "00000000T000000.000000000Z";
    if (!name.starts_with(prefix) || !name.ends_with(extension))
        return false;
    name.remove_prefix(prefix.size());
    return name.size() == form.size() + extension.size() &&
           std::equal(form.begin(), form.end(), name.begin(), [](char expected, char character) {
               return expected == '0' ? character >= '0' && character <= '9'
                                      : character == expected;
           });
}

// Removes all but the newest. A failure is no error: what was promised is the new backup.
void pruneBackups(const std::string &backupFolder, std::string_view prefix,
                  const std::string &newest)
{
    std::error_code error;
    std::vector<std::string> names;
    std::filesystem::directory_iterator entry(backupFolder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        // The clock may have been set back since: the one just made stays, whatever its time says.
        if (name != newest && isBackupName(name, prefix))
            names.push_back(name);
    }
    std::sort(names.begin(), names.end(), std::greater<>());
    for (std::size_t index = keptBackups - 1; index < names.size(); ++index)
        ::unlink(pathIn(backupFolder, names[index]).c_str());
}

// A new file in `backupFolder`; its name goes to `name`. No descriptor, with errno, on failure.
UniqueFd createBackup(const std::string &backupFolder, const std::string &prefix, std::string &name)
{
    for (auto moment = std::chrono::system_clock::now();; moment += std::chrono::nanoseconds(1)) {
        name = fmt::format("{}{}{}", prefix, timeText(moment), extension);
        UniqueFd descriptor(::open(pathIn(backupFolder, name).c_str(),
                                   O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (descriptor || errno != EEXIST) // that moment is taken
            return descriptor;
    }
}

std::optional<FileError> writeBackup(const std::string &backupFolder, const std::string &prefix,
                                     std::string_view text)
{
    if (!makePrivateFolder(backupFolder))
        return fileError("make the folder for backups", backupFolder, errno);
    std::string name;
    const UniqueFd descriptor = createBackup(backupFolder, prefix, name);
    const std::string backup = pathIn(backupFolder, name);
    if (!descriptor)
        return fileError("write the backup", backup, errno);
    if (::fchmod(descriptor.get(), 0600) != 0 || !writeToDisk(descriptor.get(), text) ||
        !syncFolder(backupFolder)) {
        const int code = errno;
        ::unlink(backup.c_str());
        return fileError("write the backup", backup, code);
    }
    pruneBackups(backupFolder, prefix, name);
    return std::nullopt;
}

} // namespace

std::string configurationBackupFolder()
{
    std::string state = absoluteVariable("XDG_STATE_HOME");
    if (state.empty()) {
        const std::string home = homeFolder();
        if (home.empty())
            return "";
        state = home + "/.local/state";
    }
    return state + "/Nimbrel/backups";
}

std::optional<FileError> backUpConfiguration(const std::string &path,
                                             const std::string &backupFolder)
{
    const auto old = readBoundedFile(path, XmlReader::maximumSize);
    if (const auto *error = std::get_if<NBPreferencesError>(&old)) {
        if (error->domain == posixErrorDomain && error->code == ENOENT)
            return std::nullopt;
        return FileError{error->domain == posixErrorDomain ? error->code : 0, error->message};
    }
    if (backupFolder.empty())
        return FileError{0, fmt::format("There is no place for a backup of \"{}\": neither "
                                        "XDG_STATE_HOME nor a home directory is known.",
                                        path)};
    return writeBackup(backupFolder, backupPrefix(path), std::get<std::string>(old));
}

} // namespace nimbrel
