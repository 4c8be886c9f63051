#pragma once

#include <string_view>

namespace nimbrel {

// resources/encfs6.xml, as it was when the program was built: UTF-8, with one "%@" for each of the
// eight values that vary.
extern const std::string_view configurationTemplate;

// The version of this program, as it names itself in the files it writes.
extern const std::string_view applicationVersion;

} // namespace nimbrel
