// What a tree of files holds, in a form that compares and prints well.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace nimbrel::test {

enum class TreeDetail
{
    Contents, // kinds, sizes, contents, link targets
    All       // modes, modification times to the nanosecond and link counts of files, too
};

// From the path below `folder` to a line that tells everything about the item.
using Tree = std::map<std::string, std::string>;

[[nodiscard]] Tree treeOf(const std::string &folder, TreeDetail detail = TreeDetail::Contents);

// The first few differences, one a line; empty when the trees are equal.
[[nodiscard]] std::string differences(const Tree &expected, const Tree &seen);

// The names in one folder as readdir gives them, repetitions included, without "." and "..".
[[nodiscard]] std::vector<std::string> namesIn(const std::string &folder);

} // namespace nimbrel::test
