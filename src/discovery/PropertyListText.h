#pragma once

#include <QString>

#include <string>

namespace nimbrel {

// The text under `key` in the dictionary that is the root of a property list, in the binary or the
// XML form. A null string when `file` is none of these, or when something else stands there.
// The file may be anybody's: it is judged before anything is built of it.
[[nodiscard]] QString propertyListText(const std::string &file, const std::string &key);

} // namespace nimbrel
