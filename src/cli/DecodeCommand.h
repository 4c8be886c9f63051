#pragma once

#include "cli/PathTranslation.h"

namespace nimbrel {

// Tells what the encrypted paths of a folder are called on its disk.
[[nodiscard]] ExitStatus runDecode(const TranslationOptions &options);

} // namespace nimbrel
