#include "cli/CreateCommand.h"

#include "cli/CommandError.h"
#include "cli/NewFolder.h"
#include "cli/Output.h"
#include "cli/PrintableText.h"
#include "cli/ShellWord.h"
#include "config/ConfigurationBackup.h"
#include "config/ConfigurationLookup.h"
#include "config/ConfigurationWriter.h"
#include "config/InformationFile.h"
#include "fs/NBNimbrelFS.h"

#include <fmt/format.h>

#include <memory>

namespace nimbrel {

namespace {

void throwIfFailed(const std::optional<FileError> &error)
{
    if (error)
        throw CommandError(ExitStatus::Failed, error->message,
                           "No folder was made; free some space or choose another place");
}

std::unique_ptr<NBNimbrelFS> newView(const std::string &folder, const CreateOptions &options,
                                     const SecureBuffer &password)
{
    // The sizes go in as preferences, for the key is made with them.
    NBPreferencesDictionary preferences;
    preferences.set(preferenceKey::keySize, options.keySize);
    preferences.set(preferenceKey::blockSize, options.blockSize);
    std::unique_ptr<NBNimbrelFS> view = NBNimbrelFS::withRootPath(folder, preferences);
    if (!view)
        throw CommandError(ExitStatus::Failed, "No key can be made: no random bytes to be had",
                           "No folder was made");
    view->setAreFilenamesEncrypted(!options.plainNames);
    if (!view->setPassphrase(password.text()))
        throw CommandError(ExitStatus::Failed, "The key can't be put under the password",
                           "No folder was made");
    return view;
}

void writeFiles(NewFolder &folder, const CreateOptions &options, const SecureBuffer &password)
{
    const std::unique_ptr<NBNimbrelFS> view = newView(folder.path(), options, password);
    const std::string configuration = folder.willHold(configurationFileName);
    throwIfFailed(writeConfiguration(configuration, view->settings(), password.text(),
                                     configurationBackupFolder()));
    if (options.plainNames)
        return;
    folder.willHold(informationFileName);
    throwIfFailed(writeInformationFile(folder.path()));
}

} // namespace

ExitStatus runCreate(const CreateOptions &options)
{
    NewFolder::requirePlaceFor(options.folder);
    setUpSecureHeap();
    const SecureBuffer password = chosenPassword(options.password, options.folder);
    NewFolder folder(options.folder);
    writeFiles(folder, options, password);
    folder.keep();
    say(fmt::format("Made the encrypted folder {} ({} names, {}-bit key, blocks of {} bytes).",
                    printable(folder.path()), options.plainNames ? "plain" : "encrypted",
                    options.keySize, options.blockSize));
    say("Keep the password well: without it, nobody can read the files.");
    say(fmt::format("Next: nimbrelctl mount {} MOUNTPOINT", shellWord(folder.path())));
    return ExitStatus::Done;
}

} // namespace nimbrel
