#pragma once

#include "volume/NBVolumesUserInterface.h"

#include <optional>

class QString;

namespace nimbrel {

class NBApplication;

// newVolume:  The assistants' part of it: where, which password, in advanced mode which options.
// Nothing when the user cancels.
[[nodiscard]] std::optional<NBNewVolumeSettings> askForNewVolume(NBApplication &application);

// The closing page, under this window title; true when the user wants to see the new volume.
[[nodiscard]] bool showSuccessPage(const QString &configPath, const QString &windowTitle);

} // namespace nimbrel
