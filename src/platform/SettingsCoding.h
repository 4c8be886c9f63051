// Texts of INI files and what they say, by way of QSettings.
//
// QSettings works on files alone, and here on a private one in a temporary folder (mode 0700),
// never on the user's own, for it would read that anew unasked, wait for ever for a lock that
// another process holds, and report success when a full disk cuts its writing short (Qt 6.4).
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVariant>

#include <optional>

namespace nimbrel {

using SettingsValues = QMap<QString, QVariant>; // of QString and QByteArray

// `text` must have passed checkedSettings. Nothing when the temporary file can't be had.
[[nodiscard]] std::optional<SettingsValues> settingsValues(const QByteArray &text);

// The text that settingsValues reads as `values`. Nothing when the temporary file can't be had.
[[nodiscard]] std::optional<QByteArray> settingsText(const SettingsValues &values);

} // namespace nimbrel
