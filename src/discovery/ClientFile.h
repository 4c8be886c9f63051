// The private files of cloud clients, and the texts in their bytes.
#pragma once

#include <QString>

#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

// The bytes of a client's file. Nothing when it isn't there, can't be read, isn't a regular file
// or is far larger than such files are: to the probes all that is the same.
[[nodiscard]] std::optional<std::string> clientFile(const QString &path);

// Up to the first zero byte. A null string when what is there isn't of the coding.
[[nodiscard]] QString asciiText(std::string_view bytes);
[[nodiscard]] QString utf8Text(std::string_view bytes);

// Whether something is at `path`, links followed. False for a path with a zero in it.
[[nodiscard]] bool somethingExists(const QString &path);

} // namespace nimbrel
