// Configuration files for tests: made, judged and opened.
#pragma once

#include "config/NBNimbrelFSSettings.h"
#include "config/NBPreferencesDictionary.h"
#include "config/NBPreferencesError.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nimbrel::test {

using Elements = std::vector<std::pair<std::string, std::string>>; // name, text

// A document with these elements inside its root, in this order.
[[nodiscard]] std::string document(const Elements &elements);

// The 20 elements of a configuration that passes, in their usual order; key and salt are noise.
[[nodiscard]] Elements completeElements();

// The complete document with another text for one of its elements (`occurrence` 1 is the second of
// that name).
[[nodiscard]] std::string completeWith(std::string_view name, std::string_view text,
                                       std::size_t occurrence = 0);

// The dictionary of a text that must pass, and the error of one that must not; both throw
// otherwise.
[[nodiscard]] NBPreferencesDictionary accepted(std::string_view text);
[[nodiscard]] NBPreferencesError refused(std::string_view text);

// The message of a refusal; throws when the error is of another domain than the reader's.
[[nodiscard]] std::string refusalOf(std::string_view text);

struct FolderForm
{
    std::int64_t keySize = 256; // bits
    std::size_t saltLength = 20;
    std::int64_t kdfIterations = 5000;
};

// The settings of a folder with a new random key, wrapped under `passphrase`.
[[nodiscard]] NBNimbrelFSSettings freshSettings(std::string_view passphrase,
                                                const FolderForm &form = {});

// What a filesystem would hold after reading `preferences`.
[[nodiscard]] NBNimbrelFSSettings settingsOf(const NBPreferencesDictionary &preferences);

// Wraps the key of `settings` under another passphrase.
void changePassphrase(NBNimbrelFSSettings &settings, std::string_view oldPassphrase,
                      std::string_view newPassphrase);

// The volume key (hexadecimal) behind a configuration's text; empty when it doesn't open.
[[nodiscard]] std::string keyOfText(std::string_view text, std::string_view passphrase);
[[nodiscard]] std::string keyOfFile(const std::string &path, std::string_view passphrase);

// The names in a folder, sorted.
[[nodiscard]] std::vector<std::string> namesIn(const std::string &folder);

} // namespace nimbrel::test
