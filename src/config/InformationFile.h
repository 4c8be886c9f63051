#pragma once

#include "config/FileError.h"

#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

inline constexpr std::string_view informationFileName = "!IMPORTANT Nimbrel Information.txt";

// For whoever opens a folder with encrypted names without the application. UTF-8, lines end in CR
// and LF.
[[nodiscard]] std::string_view informationText() noexcept;

// Writes `text` into `folder` under the name above.
[[nodiscard]] std::optional<FileError>
writeInformationFile(const std::string &folder, std::string_view text = informationText());

} // namespace nimbrel
