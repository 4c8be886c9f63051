#pragma once

#include <QString>

namespace nimbrel {

// How long guessing a passphrase would take an attacker who has the folder and a fast machine, in
// words ("centuries"), by libzxcvbn's estimate of its entropy; null for an empty one. Looks at the
// first 64 characters alone, for its time grows steeply with the length.
[[nodiscard]] QString guessTime(const QString &passphrase);

} // namespace nimbrel
