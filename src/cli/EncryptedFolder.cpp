#include "cli/EncryptedFolder.h"

#include "cli/CommandError.h"
#include "cli/Output.h"
#include "cli/PrintableText.h"
#include "config/ConfigurationBackup.h"
#include "config/ConfigurationLookup.h"
#include "config/NBNimbrelFSPreferences.h"
#include "config/PreferencesLimits.h"

#include <fmt/format.h>

#include <cerrno>
#include <filesystem>
#include <unistd.h>

namespace nimbrel {

namespace {

[[noreturn]] void refuse(const std::string &cause, const std::string &nextStep)
{
    throw CommandError(ExitStatus::FolderRefused, cause, nextStep);
}

std::string readableFolder(const std::string &path)
{
    std::error_code error;
    std::string canonical = std::filesystem::canonical(path, error);
    if (error)
        refuse(fmt::format("{} can't be found: {}", path, error.message()), "Check the path");
    if (!std::filesystem::is_directory(canonical, error))
        refuse(path + " is not a folder", "Give the folder that holds the encrypted files");
    if (::access(canonical.c_str(), R_OK | X_OK) != 0)
        refuse(fmt::format("{} can't be read: {}", path, errorText(errno)),
               "Ask its owner for permission");
    return canonical;
}

std::string configurationIn(const std::string &folder)
{
    if (const std::optional<std::string> found = findConfiguration(folder))
        return *found;
    refuse(
        fmt::format("{} is not an encrypted folder: it has no {}", folder, configurationFileName),
        "Make a new one with: nimbrelctl create FOLDER");
}

std::string whereCopiesMayBe()
{
    const std::string backups = configurationBackupFolder();
    const std::string other = backups.empty() ? "" : fmt::format(" or in {}", backups);
    return fmt::format("Look for a good copy in a backup of yours{}", other);
}

// Where the configuration itself speaks of something not supported, no copy helps.
std::string nextStepAfter(const NBPreferencesError &error)
{
    if (error.domain == NBNMFSPreferencesErrorDomain)
        return "Nimbrel can't serve a folder with this configuration";
    if (error.domain == posixErrorDomain)
        return "Check the file's permissions";
    return whereCopiesMayBe();
}

NBPreferencesDictionary judgedPreferences(const std::string &path)
{
    NBPreferencesError error;
    std::optional<NBPreferencesDictionary> read =
        NBNimbrelFSPreferences().preferencesWithURL(path, &error);
    if (!read)
        refuse(fmt::format("{} is refused: {}", path, error.message), nextStepAfter(error));
    if (const std::optional<std::string> limit = judgeLimits(*read))
        refuse(fmt::format("{} is refused: {}", path, *limit),
               "Nimbrel can't serve a folder with this configuration");
    if (!read->has(preferenceKey::encodedKey) || !read->has(preferenceKey::salt))
        refuse(path + " is refused: it holds no key", whereCopiesMayBe());
    return std::move(*read);
}

} // namespace

EncryptedFolder::EncryptedFolder(const std::string &path)
    : _path(readableFolder(path)), _configurationPath(configurationIn(_path)),
      _preferences(judgedPreferences(_configurationPath))
{
}

std::unique_ptr<NBNimbrelFS> EncryptedFolder::open(const SecureBuffer &password) const
{
    showProgress("Opening…");
    std::unique_ptr<NBNimbrelFS> opened =
        NBNimbrelFS::withRootPath(_path, _preferences, password.text());
    if (!opened)
        throw CommandError(ExitStatus::WrongPassword, "Wrong password for " + _path, "Try again");
    return opened;
}

std::unique_ptr<NBNimbrelFS> EncryptedFolder::open(const PasswordSource &source) const
{
    return open(currentPassword(source, _path));
}

} // namespace nimbrel
