#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

// One place of a file browser's sidebar.
struct Place
{
    std::string path;  // absolute, UTF-8
    std::string label; // one line, never empty
};

// The text of a list with `place` behind its last one; the text itself where the place is in it
// already. Nothing when the text can't be understood.
[[nodiscard]] std::optional<std::string> withPlaceInGtkList(std::string_view text,
                                                            const Place &place);
[[nodiscard]] std::optional<std::string> withPlaceInXbel(std::string_view text, const Place &place);

// The file URI of an absolute path, spelled as GTK spells it.
[[nodiscard]] std::string fileUri(const std::string &path);
// True when the URI names that path on this machine, however it is spelled.
[[nodiscard]] bool isFileUriOf(std::string_view uri, const std::string &path);

} // namespace nimbrel
