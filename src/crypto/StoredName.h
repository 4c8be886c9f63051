#pragma once

#include <string_view>

namespace nimbrel {

// True when `stored` is what an encoder writes: at least 3 characters, all of the file-name
// alphabet, with no bits set in the last character that no name byte fills. Two stored names that
// differ only in such bits would decode to one plain name, and only the one that the encoder writes
// can be opened by it.
[[nodiscard]] bool isCanonicalStoredName(std::string_view stored) noexcept;

} // namespace nimbrel
