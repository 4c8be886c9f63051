// A new encrypted folder on disk.
#include "volume/NBNimbrelVolume.h"

#include "app/SystemLog.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "config/ConfigurationBackup.h"
#include "config/ConfigurationLookup.h"
#include "config/ConfigurationWriter.h"
#include "config/InformationFile.h"
#include "fs/NBNimbrelFS.h"
#include "platform/Resources.h"
#include "volume/DiskFiles.h"
#include "volume/NewFolder.h"
#include "volume/TextConversion.h"

namespace nimbrel {

namespace {

// The pages that come with the application, in the user's language or in English.
std::optional<QString> manual(const Resources &resources, const QString &name)
{
    const QString type = QStringLiteral("pdf");
    if (auto path = resources.path(name, type))
        return path;
    return resources.path(name, type, QStringLiteral("en"));
}

QString localInformation()
{
    return texts::tr(std::string(informationText()).c_str());
}

} // namespace

bool NBNimbrelVolume::writePreferencesToDisk()
{
    if (!_nmFS)
        return false; // nothing is known of the folder: what would be written opens nothing
    const std::optional<FileError> error = writeConfiguration(
        coreText(_configPath), _nmFS->settings(), _passphrase.text(), configurationBackupFolder());
    if (error)
        systemLog(qtText(error->message));
    return !error;
}

bool NBNimbrelVolume::writeToDisk()
{
    if (_passphrase.empty()) {
        systemLog(QStringLiteral("%1: no folder is made without a password: anyone could open it")
                      .arg(_path));
        return false;
    }
    NewFolder folder(coreText(_path));
    if (folder.holdsConfiguration() || Util::fileExists(_configPath)) {
        systemLog(QStringLiteral("%1: a configuration is there already; its key would be lost")
                      .arg(_path));
        return false;
    }
    if (!folder.make()) {
        Util::showAlert(texts::tr("Could not create the encrypted folder."));
        return false;
    }
    if (!writePreferencesToDisk()) {
        folder.takeBack();
        return false;
    }
    if (encodeFilenames())
        if (const auto error = writeInformationFile(coreText(_path), coreText(localInformation())))
            systemLog(qtText(error->message)); // the folder is whole without it
    return true;
}

void NBNimbrelVolume::writeAuxiliaryFilesToDisk()
{
    const QString extension = QStringLiteral(".pdf");
    if (const auto path = manual(_services.resources, QStringLiteral("Nimbrel for Mac Manual")))
        copyOntoDisk(*path, mountPoint(), texts::tr("Nimbrel for Mac Manual") + extension);
    if (const auto path = manual(_services.resources, QStringLiteral("Getting Started")))
        copyOntoDisk(*path, mountPoint(), QStringLiteral("Getting Started.pdf"));
}

} // namespace nimbrel
