// Plain absolute paths, rooted at the mount point.
#pragma once

#include <string>
#include <string_view>

namespace nimbrel {

// The last name; empty for the root.
[[nodiscard]] inline std::string_view nameOf(std::string_view path) noexcept
{
    return path.substr(path.rfind('/') + 1);
}

// The folder that the item stands in; the root's is the root.
[[nodiscard]] inline std::string folderOf(std::string_view path)
{
    const std::size_t slash = path.rfind('/');
    return slash == 0 || slash == std::string_view::npos ? "/" : std::string(path.substr(0, slash));
}

} // namespace nimbrel
