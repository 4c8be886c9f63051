#include "platform/FileManagerActions.h"

#include "platform/fileManagerActions/FileManager.h"

#include <QStringList>

#include <algorithm>

namespace nimbrel::fileManagerActions {

namespace {

const auto &fileManagers()
{
    static const std::array all{nautilus, nemo, dolphin, thunar};
    return all;
}

// One a line; nothing for none.
std::optional<QString> together(const QStringList &errors)
{
    return errors.isEmpty() ? std::nullopt : std::optional(errors.join(u'\n'));
}

// No form of menu entry has a place for control characters.
bool canBeNamed(const QString &path)
{
    return path.startsWith(u'/') && std::none_of(path.begin(), path.end(), [](QChar character) {
               return character.category() == QChar::Other_Control;
           });
}

} // namespace

bool areInstalled(const QString &path)
{
    return std::all_of(fileManagers().begin(), fileManagers().end(),
                       [&](const FileManager &manager) { return manager.isInstalled(path); });
}

std::optional<QString> install(const QString &path, const QString &title)
{
    if (!canBeNamed(path))
        return QStringLiteral("No menu entry can start \"%1\".").arg(path);
    QStringList errors;
    for (const FileManager &manager : fileManagers())
        if (const auto error = manager.install(path, title.simplified()))
            errors.append(*error);
    return together(errors);
}

std::optional<QString> remove()
{
    QStringList errors;
    for (const FileManager &manager : fileManagers())
        if (const auto error = manager.remove())
            errors.append(*error);
    return together(errors);
}

} // namespace nimbrel::fileManagerActions
