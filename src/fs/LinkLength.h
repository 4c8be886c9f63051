#pragma once

#include <algorithm>
#include <sys/types.h>

namespace nimbrel {

// The length of a link's plain target, in bytes, from that of its stored form: 6 bits a character,
// 2 bytes of them the code. From the length alone: to read the target would be an access, with a
// time of its own.
[[nodiscard]] inline off_t plainTargetLength(off_t stored) noexcept
{
    return std::max<off_t>(stored * 6 / 8 - 2, 0);
}

} // namespace nimbrel
