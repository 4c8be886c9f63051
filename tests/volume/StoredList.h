// Lists of volumes as they lie in the preferences, and the program's next start on them.
#pragma once

#include "platform/KeyedArchive.h"
#include "support/BinaryPropertyList.h"
#include "support/Files.h"
#include "volume/TextConversion.h"
#include "volume/VolumeDesk.h"

#include <algorithm>
#include <filesystem>

namespace nimbrel::test {

inline const QString recordClassName = QStringLiteral("NBNimbrelVolume");

// What an archived volume says, written as the original platform does.
struct ListedVolume
{
    std::string root = {};
    ArchivedRecord::Value label = std::string("Nimbrel");
    std::string configPath = {};
    bool automount = true;
    bool storePassword = false;
    bool checkKey = true;
    bool spotlight = false;
    bool local = false;
    bool allowsAll = false;
    int version = 1;
};

[[nodiscard]] inline ArchivedRecord oldRecord(const ListedVolume &volume)
{
    return {"Volume",
            {{"version", volume.version},
             {"root", volume.root},
             {"label", volume.label},
             {"configPath", volume.configPath},
             {"automount", volume.automount},
             {"storePassword", volume.storePassword},
             {"checkKey", volume.checkKey},
             {"spotlight", volume.spotlight}}};
}

[[nodiscard]] inline ArchivedRecord newRecord(const ListedVolume &volume)
{
    ArchivedRecord record = oldRecord(volume);
    record.className = "NBNimbrelVolume";
    record.values.emplace_back("local", volume.local);
    record.values.emplace_back("allowsAll", volume.allowsAll);
    return record;
}

// The program's next start on what the desk has on disk.
class Session final
{
public:
    explicit Session(VolumeDesk &desk)
        : services{desk.secrets,   preferences, desk.workspace,      desk.bookmarks,
                   desk.resources, desk.person, desk.services.keeper},
          controller(services)
    {
    }

    SettingsFile preferences;
    VolumeServices services;
    NBVolumesController controller;
};

[[nodiscard]] inline std::string preferencesPath(const VolumeDesk &desk)
{
    return desk.home() + "/.config/Nimbrel/Nimbrel.conf";
}

// Puts an archive into the preferences on disk.
inline void storeArchive(const std::string &archive)
{
    SettingsFile preferences;
    preferences.setValue(preferencesKey::volumes, QByteArray::fromStdString(archive));
    if (!preferences.synchronize())
        throw std::runtime_error("the preferences can't be written");
}

inline void storeRecords(const std::vector<ArchivedRecord> &records)
{
    storeArchive(keyedArchive(records));
}

[[nodiscard]] inline QByteArray storedArchive()
{
    return SettingsFile().value(preferencesKey::volumes).toByteArray();
}

// The labels of the list that lies in the preferences on disk.
[[nodiscard]] inline QStringList storedLabels()
{
    const auto archive = unarchivedRecords(storedArchive());
    QStringList labels;
    for (const KeyedRecord &record : std::get<QList<KeyedRecord>>(archive))
        labels.push_back(record.decodeObject(QStringLiteral("label")).value_or(QString()));
    return labels;
}

// The copies of the preferences that were kept for that reason.
[[nodiscard]] inline std::vector<std::string> keptCopies(const VolumeDesk &desk,
                                                         const std::string &reason)
{
    std::vector<std::string> copies;
    const std::string prefix = preferencesPath(desk) + "." + reason;
    const std::filesystem::path folder = std::filesystem::path(prefix).parent_path();
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator(folder, error))
        if (entry.path().string().starts_with(prefix))
            copies.push_back(entry.path());
    std::sort(copies.begin(), copies.end());
    return copies;
}

[[nodiscard]] inline QStringList labelsOf(const QList<VolumePtr> &volumes)
{
    QStringList labels;
    for (const VolumePtr &volume : volumes)
        labels.push_back(volume->label());
    return labels;
}

} // namespace nimbrel::test
