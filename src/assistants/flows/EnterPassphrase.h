#pragma once

#include "volume/NBVolumesUserInterface.h"

#include <optional>

namespace nimbrel {

// showPassphraseAssistant
// Asks for a volume's password in a modal assistant; nothing when the user cancels.
[[nodiscard]] std::optional<PassphraseAnswer> askForPassphrase(const NBNimbrelVolume &volume);

} // namespace nimbrel
