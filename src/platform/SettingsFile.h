#pragma once

#include "platform/Preferences.h"
#include "platform/SettingsCoding.h"

#include <string>

namespace nimbrel {

// Preferences in one INI file, $XDG_CONFIG_HOME/Nimbrel/Nimbrel.conf, mode 0600, in a folder of
// mode 0700. The coding is QSettings' own, which reads only what checkedSettings lets pass.
//
// The file is replaced in one step when it is written, also behind a symbolic link, and without the
// comments that somebody may have put there. One with lines that can't be understood is copied
// beside itself before the first write replaces it.
//
// What other processes store meanwhile is seen after synchronize(), which writes this one's changes
// alone. Unsaved changes are stored at the end of this object's life.
class SettingsFile final : public Preferences
{
public:
    SettingsFile(); // the user's own
    explicit SettingsFile(const QString &path);
    ~SettingsFile() override;
    SettingsFile(const SettingsFile &) = delete;
    SettingsFile &operator=(const SettingsFile &) = delete;

    // A QString or a QByteArray, or a registered default as it is.
    [[nodiscard]] QVariant value(const QString &key) const override;
    // Byte arrays, and all that has a text form: texts, booleans, numbers. An invalid value
    // removes.
    void setValue(const QString &key, const QVariant &value) override;
    void remove(const QString &key) override;
    void registerDefaults(const QHash<QString, QVariant> &defaults) override;
    bool synchronize() override;
    [[nodiscard]] std::optional<QString> trouble() const override { return _trouble; }
    std::optional<QString> keepCopy(const QString &reason) override;

private:
    // Nothing when all is well, else why not.
    std::optional<QString> load();
    std::optional<QString> store();
    std::optional<QString> writeChanges();
    [[nodiscard]] std::optional<QString> damage() const;
    std::optional<QString> write(const QByteArray &text) const;

    std::string _path; // empty: there is no place for it
    SettingsValues _stored;
    SettingsValues _changes; // not on disk yet; invalid for what is to be removed
    QHash<QString, QVariant> _defaults;
    bool _isDamaged = false; // lines of the file can't be understood
    std::optional<QString> _trouble;
};

} // namespace nimbrel
