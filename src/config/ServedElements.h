#pragma once

#include "config/NBPreferencesDictionary.h"

#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

// Stores what the element `name` with the (trimmed) text `text` says. Which algorithm a `name`, a
// `major` or a `minor` belongs to follows from what is stored already, not from nesting. Gives the
// message of a refusal, nothing when the element passes; elements of other names pass unread.
[[nodiscard]] std::optional<std::string> serveElement(NBPreferencesDictionary &parsedData,
                                                      std::string_view name, std::string_view text);

} // namespace nimbrel
