// What the program says on its standard streams.
#pragma once

#include <string_view>

namespace nimbrel {

// One result on standard output, as it stands, and what ends it.
void say(std::string_view line, char end = '\n');
// One line on standard error, made printable, after the program's name.
void complain(std::string_view line);
// A line about work that takes a while; only where a person watches standard error.
void showProgress(std::string_view line);

// False when something said didn't reach standard output, because of a full disk for instance.
[[nodiscard]] bool flushOutput();

} // namespace nimbrel
