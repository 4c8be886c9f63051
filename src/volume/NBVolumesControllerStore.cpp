// The list in the preferences, and what guards it there.
#include "volume/NBVolumesController.h"

#include "app/SystemLog.h"
#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "platform/KeyedArchive.h"
#include "platform/Preferences.h"
#include "volume/StoredPassphrase.h"
#include "volume/Volume.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace nimbrel {

namespace {

const QString recordClass = QStringLiteral("NBNimbrelVolume");
const QString oldRecordClass = QStringLiteral("Volume");

QByteArray archiveOf(const QList<VolumePtr> &volumes)
{
    QList<KeyedRecord> records;
    for (const VolumePtr &volume : volumes) {
        records.append(KeyedRecord(recordClass));
        volume->encode(records.last());
    }
    return archivedData(records);
}

// For outside readers: mount point to folder, as one JSON object. Of two volumes with one mount
// point the later one stands.
QString infoOf(const QList<VolumePtr> &volumes)
{
    QJsonObject info;
    for (const VolumePtr &volume : volumes)
        info.insert(volume->mountPoint(), volume->path());
    return QString::fromUtf8(QJsonDocument(info).toJson(QJsonDocument::Compact));
}

// A record that this version empties on reading: the next save would lose it for a newer one.
bool isOfNewerVersion(const KeyedRecord &record)
{
    return record.decodeInteger(QStringLiteral("version")) != 1 &&
           record.decodeObject(QStringLiteral("root")).has_value();
}

void tellOfDamage(const QString &reason, const std::optional<QString> &copy)
{
    systemLog(QStringLiteral("The list of volumes can't be read: %1").arg(reason));
    const QString next =
        copy ? formatted(texts::tr("The file was kept as %@. Add your encrypted folders again; "
                                   "none of their files is touched."),
                         {*copy})
             : texts::tr("Add your encrypted folders again; none of their files is touched.");
    Util::showAlert(asFormat(reason + QStringLiteral("\n\n") + next),
                    texts::tr("The list of volumes could not be read."));
}

} // namespace

void NBVolumesController::saveVolumes()
{
    Preferences &preferences = _services.preferences;
    preferences.setValue(preferencesKey::volumes, archiveOf(_volumes));
    if (_volumes.isEmpty())
        preferences.remove(preferencesKey::volumesInfo);
    else
        preferences.setValue(preferencesKey::volumesInfo, infoOf(_volumes));
    if (preferences.synchronize())
        return;
    const QString reason = preferences.trouble().value_or(QString());
    systemLog(QStringLiteral("The list of volumes can't be saved: %1").arg(reason));
    Util::showAlert(asFormat(reason), texts::tr("The list of volumes could not be saved."));
}

// After an upgrade the store holds an empty list until the next save (kept); the file as it was
// stays beside it, so that a run which never comes to that save loses nothing.
void NBVolumesController::loadVolumes()
{
    Preferences &preferences = _services.preferences;
    const std::optional<QString> trouble = preferences.trouble();
    const QVariant stored = preferences.value(preferencesKey::volumes);
    if (!stored.isValid() && trouble)
        return tellOfDamage(*trouble, preferences.keepCopy(QStringLiteral("damaged")));
    if (!stored.isValid())
        return;
    if (trouble) // of other lines; the store copies the file before it replaces it
        systemLog(*trouble);
    const auto archive = unarchivedRecords(stored.toByteArray());
    if (const auto *error = std::get_if<KeyedArchiveError>(&archive))
        return tellOfDamage(error->message, preferences.keepCopy(QStringLiteral("damaged")));

    QList<VolumePtr> volumes;
    const auto &records = std::get<QList<KeyedRecord>>(archive);
    if (std::ranges::any_of(records, isOfNewerVersion))
        (void)preferences.keepCopy(QStringLiteral("newer-version"));
    for (const KeyedRecord &record : records) {
        volumes.append(volumeOf(record));
        if (volumes.last()->storePassphrase())
            fetchPassphrase(*volumes.last());
    }
    const bool upgraded = std::ranges::any_of(
        records, [](const KeyedRecord &record) { return record.className() == oldRecordClass; });
    if (upgraded) {
        (void)preferences.keepCopy(QStringLiteral("before-upgrade"));
        saveVolumes();
    }
    _volumes = volumes;
}

VolumePtr NBVolumesController::volumeOf(const KeyedRecord &record)
{
    if (record.className() == oldRecordClass)
        return upgradeLegacyVolume(Volume(record));
    return NBNimbrelVolume::withCoder(_services, record);
}

void NBVolumesController::fetchPassphrase(NBNimbrelVolume &volume)
{
    volume.setPassphrase(
        storedPassphrase(_services.secrets, volume.keychainServiceName(), volume.path()));
}

VolumePtr NBVolumesController::upgradeLegacyVolume(const Volume &volume)
{
    VolumePtr upgraded = NBNimbrelVolume::withPath(_services);
    upgraded->setPath(volume.root);
    upgraded->setLabel(volume.label);
    upgraded->setConfigPath(volume.configPath);
    upgraded->setAutomount(volume.automount);
    upgraded->setStorePassphrase(volume.storePassphrase);
    upgraded->setCheckKey(volume.checkKey);
    upgraded->setSpotlight(volume.spotlight);
    upgraded->setIsMounted(false);
    return upgraded;
}

} // namespace nimbrel
