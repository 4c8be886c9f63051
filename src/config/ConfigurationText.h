// Work on the text of a configuration file.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace nimbrel {

// Puts `values` in the places of the template's "%@", in order, with what XML reserves replaced.
// Nothing unless there are as many of the one as of the other.
[[nodiscard]] std::optional<std::string> filledTemplate(std::string_view text,
                                                        std::span<const std::string> values);

// `text` with `value` as the content of its one element `name`, which has no attributes. Nothing
// when there is no such element.
[[nodiscard]] std::optional<std::string>
textWithElement(std::string_view text, std::string_view name, std::string_view value);

} // namespace nimbrel
