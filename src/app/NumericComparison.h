#pragma once

#include <QString>

#include <compare>

namespace nimbrel {

// compare:options:  Case is ignored, and numbers in the texts count by value: "1.9" before "1.10",
// "1.02" equal to "1.2". A number has as many digits as it likes. A text orders before one that
// goes on behind it: "10.8" before "10.8.0".
[[nodiscard]] std::strong_ordering compareNumerically(QStringView one, QStringView other);

} // namespace nimbrel
