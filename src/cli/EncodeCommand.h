#pragma once

#include "cli/PathTranslation.h"

namespace nimbrel {

// Tells under which encrypted paths the folder keeps plain ones.
[[nodiscard]] ExitStatus runEncode(const TranslationOptions &options);

} // namespace nimbrel
