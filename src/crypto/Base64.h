// Two base64 codings, RFC 4648's for the configuration file and one for file names, and the bit
// regrouping between bytes and 6-bit values. All are part of the on-disk format.
#pragma once

#include "crypto/Bytes.h"

#include <string>
#include <string_view>

namespace nimbrel {

// dataWithBase64String:
// As many bytes as the text (RFC 4648, one line) yields; text that isn't base64 gives what could be
// decoded, possibly nothing. Callers notice through the length.
[[nodiscard]] Bytes dataWithBase64String(std::string_view text);

// One line, padded with '=', without a line break (RFC 4648).
[[nodiscard]] std::string base64EncodedString(ByteView bytes);

// dataWithBase64ASCIIString:
// One value for each character of the file-name alphabet (0 to 63); '.' and '/' give 0 and 1.
// Characters outside the alphabet give some value: the check value of a name rejects them later.
[[nodiscard]] Bytes dataWithBase64ASCIIString(std::string_view text);

// One character of the file-name alphabet for each value. Values are 0 to 63.
[[nodiscard]] std::string base64EncodedASCIIString(ByteView values);

// changeBase2:src2Pow:dst2Pow:outputPartialLastByte:
// Regroups a bit string from groups of `src2Pow` bits to groups of `dst2Pow` bits, low bits first.
// Each source byte must fit in `src2Pow` bits. Leftover bits are dropped, or make one more value
// when `outputPartialLastByte` is true.
[[nodiscard]] Bytes changeBase2(ByteView source, unsigned src2Pow, unsigned dst2Pow,
                                bool outputPartialLastByte);

} // namespace nimbrel
