#include "cli/PasswdCommand.h"

#include "cli/CommandError.h"
#include "cli/EncryptedFolder.h"
#include "cli/Output.h"
#include "cli/PrintableText.h"
#include "config/ConfigurationBackup.h"
#include "config/ConfigurationWriter.h"

#include <fmt/format.h>

namespace nimbrel {

namespace {

constexpr const char *nothingChanged = "The password was not changed";

std::string backupFolder()
{
    std::string folder = configurationBackupFolder();
    if (folder.empty())
        throw CommandError(ExitStatus::Failed,
                           "There is no place to keep the old configuration in: neither "
                           "XDG_STATE_HOME nor a home directory is set",
                           nothingChanged);
    return folder;
}

} // namespace

ExitStatus runPasswd(const PasswdOptions &options)
{
    const EncryptedFolder folder(options.folder);
    const std::string backups = backupFolder();
    setUpSecureHeap();
    const std::unique_ptr<NBNimbrelFS> opened = folder.open(options.password);
    const SecureBuffer password = chosenPassword(options.newPassword, folder.path());
    if (!opened->setPassphrase(password.text()))
        throw CommandError(ExitStatus::Failed, "The key can't be put under the new password",
                           nothingChanged);
    if (const std::optional<FileError> error = writeConfiguration(
            folder.configurationPath(), opened->settings(), password.text(), backups))
        throw CommandError(ExitStatus::Failed, error->message, nothingChanged);
    say(fmt::format("Changed the password of {}.", printable(folder.path())));
    say(fmt::format("The old configuration is kept in {}: it still opens the folder with the old "
                    "password. Remove it there if others may know that password.",
                    printable(backups)));
    return ExitStatus::Done;
}

} // namespace nimbrel
