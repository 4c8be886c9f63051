#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace nimbrel {

// Whether `data` is a binary property list that a reader may build a tree from: every length,
// offset and reference lies within the data, nothing contains itself, texts are whole, and the tree
// is small. libplist recurses into nested containers and copies shared ones, so a few bytes could
// otherwise cost it the stack or all memory.
//
// Nothing when all is well, else why not. Only what the root reaches is looked at.
//
// The form: "bplist00"; objects, each a marker byte with its kind in the upper and its length in
// the lower half; a table of their offsets; 32 bytes that tell the table's place and widths. All
// numbers are big-endian.
[[nodiscard]] std::optional<QString> propertyListTrouble(const QByteArray &data);

namespace propertyListLimits {
inline constexpr qsizetype size = qsizetype{16} << 20U; // bytes
inline constexpr unsigned depth = 16;                   // containers and values around each other
inline constexpr quint64 objects = 1'000'000;
inline constexpr quint64 memory = quint64{128} << 20U; // of the tree, in bytes, roughly
} // namespace propertyListLimits

} // namespace nimbrel
