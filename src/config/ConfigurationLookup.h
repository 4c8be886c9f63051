#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

inline constexpr std::string_view configurationFileName = ".encfs6.xml";
inline constexpr std::string_view oldConfigurationFileName = "Keyfile.nmx";

// The path of the configuration file in the encrypted folder `folder`, the new name before the old
// one; nothing when it has neither.
[[nodiscard]] std::optional<std::string> findConfiguration(const std::string &folder);

} // namespace nimbrel
