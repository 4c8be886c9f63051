#include "platform/SettingsCoding.h"

#include "platform/SettingsFileCheck.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

namespace nimbrel {

namespace {

// QSettings remembers files by their paths: each is used once.
QString fileIn(const QTemporaryDir &folder)
{
    return folder.filePath(QStringLiteral("preferences.conf"));
}

bool writeWhole(const QString &path, const QByteArray &text)
{
    QFile file(path);
    return file.open(QFile::WriteOnly) && file.write(text) == text.size() && file.flush();
}

std::optional<QByteArray> readWhole(const QString &path)
{
    QFile file(path);
    if (!file.open(QFile::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

} // namespace

std::optional<SettingsValues> settingsValues(const QByteArray &text)
{
    SettingsValues values;
    if (text.isEmpty())
        return values;
    const QTemporaryDir folder;
    if (!folder.isValid() || !writeWhole(fileIn(folder), text))
        return std::nullopt;
    const QSettings settings(fileIn(folder), QSettings::IniFormat);
    for (const QString &key : settings.allKeys())
        if (const QVariant value = settings.value(key); value.isValid())
            values.insert(key, value);
    if (settings.status() != QSettings::NoError)
        return std::nullopt;
    return values;
}

std::optional<QByteArray> settingsText(const SettingsValues &values)
{
    if (values.isEmpty())
        return QByteArray();
    const QTemporaryDir folder;
    if (!folder.isValid())
        return std::nullopt;
    QSettings settings(fileIn(folder), QSettings::IniFormat);
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        settings.setValue(value.key(), *value);
    settings.sync();
    auto text = readWhole(fileIn(folder));
    if (settings.status() != QSettings::NoError || !text)
        return std::nullopt;
    // A writing that was cut short shows in the reading alone.
    const CheckedSettings checked = checkedSettings(*text);
    if (checked.isDamaged || settingsValues(checked.text) != values)
        return std::nullopt;
    return text;
}

} // namespace nimbrel
