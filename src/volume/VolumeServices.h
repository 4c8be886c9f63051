#pragma once

#include "platform/SystemFacts.h"

#include <QString>

namespace nimbrel {

class Bookmarks;
class MountKeeper;
class NBVolumesUserInterface;
class Preferences;
class Resources;
class SecretStore;
class Workspace;

// What volumes need of the world around them. Nothing is owned; all of it outlives every volume.
struct VolumeServices
{
    SecretStore &secrets;
    Preferences &preferences;
    Workspace &workspace;
    Bookmarks &bookmarks;
    const Resources &resources;
    NBVolumesUserInterface &userInterface;
    MountKeeper *keeper = nullptr; // detaches disks should this process die
    QString mountRoot = systemFacts::homeFolder() + QStringLiteral("/Volumes");
    QString desktopFolder = systemFacts::desktopFolder();
};

} // namespace nimbrel
