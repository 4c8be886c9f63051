#pragma once

#include <QHash>
#include <QString>
#include <QVariant>

#include <optional>

namespace nimbrel {

// The application's key-value store. Main thread only.
class Preferences
{
public:
    Preferences() = default;
    virtual ~Preferences() = default;
    Preferences(const Preferences &) = delete;
    Preferences &operator=(const Preferences &) = delete;

    // What is stored, else the registered default, else an invalid value.
    [[nodiscard]] virtual QVariant value(const QString &key) const = 0;
    virtual void setValue(const QString &key, const QVariant &value) = 0;
    virtual void remove(const QString &key) = 0;
    // registerDefaults:
    // Values for absent keys, for this run alone; nothing is stored.
    virtual void registerDefaults(const QHash<QString, QVariant> &defaults) = 0;
    // Puts everything on disk in one step. False, with the reason in trouble(), when that fails.
    virtual bool synchronize() = 0;

    // Why the stored preferences couldn't be read or written, for the user; nothing when all is
    // well.
    [[nodiscard]] virtual std::optional<QString> trouble() const = 0;
    // Copies the stored preferences, as they are on disk, to a name of their own beside them that
    // ends in `reason` and the time, and never over another copy. The copy's path; nothing when
    // there is nothing to copy or it fails.
    virtual std::optional<QString> keepCopy(const QString &reason) = 0;

    // A stored boolean, also "true", "yes", "on" (of either case) or a number other than 0 that
    // somebody has written by hand; false for an absent key without a default, and for all else.
    [[nodiscard]] bool boolValue(const QString &key) const;
};

// The keys of the whole program.
namespace preferencesKey {
inline const QString volumes = QStringLiteral("volumes");           // data: a keyed archive
inline const QString volumesInfo = QStringLiteral("NBVolumesInfo"); // mount point to folder
inline const QString firstRunDate = QStringLiteral("firstRunDate");
inline const QString createAliases = QStringLiteral("createAliases");
inline const QString volumePrefix = QStringLiteral("volumePrefix");
inline const QString advanced = QStringLiteral("advanced");
inline const QString updateToBeta = QStringLiteral("NBUpdateToBeta");
inline const QString redPill = QStringLiteral("NBGiveMeTheRedPill"); // switches the log file on
inline const QString sendProfileInfo = QStringLiteral("SUSendProfileInfo");
inline const QString feedURL = QStringLiteral("SUFeedURL");             // in the build's place
inline const QString lastCheckTime = QStringLiteral("SULastCheckTime"); // ISO 8601, UTC
} // namespace preferencesKey

} // namespace nimbrel
