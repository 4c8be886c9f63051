#pragma once

#include <string>
#include <vector>

namespace nimbrel {

// The options of a mount as the user gave them.
struct MountArguments
{
    std::vector<std::string> options; // for UserFileSystem, one a piece
    bool allowOther = false;
    bool nonempty = false;
};

// Takes `-o` arguments apart at their commas (a backslash keeps one) and adds the two that have
// switches of their own. Throws CommandError (Usage) at options that this program must set itself.
[[nodiscard]] MountArguments mountArguments(const std::vector<std::string> &given, bool readOnly,
                                            bool allowOther);

} // namespace nimbrel
