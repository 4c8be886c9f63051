#pragma once

#include <QString>

#include <array>
#include <optional>

namespace nimbrel::fileManagerActions {

// One of those whose menus have our entry: the operations of FileManagerActions.h for it alone.
struct FileManager
{
    bool (*isInstalled)(const QString &path);
    std::optional<QString> (*install)(const QString &path, const QString &title);
    std::optional<QString> (*remove)();
};

extern const FileManager nautilus; // a script; also of GNOME's successors of that name
extern const FileManager nemo;     // an action
extern const FileManager dolphin;  // a service menu
extern const FileManager thunar;   // an element of a list that is the user's

} // namespace nimbrel::fileManagerActions
