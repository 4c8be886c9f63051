#pragma once

#include <chrono>
#include <string>

namespace nimbrel {

// Asks the FUSE disk at `path` and tells whether its connection is gone. The question is put by a
// process of its own: one that a hanging disk doesn't answer can't be interrupted, and this
// process must never hang with it. No answer within `limit` is "no".
[[nodiscard]] bool hasLostItsProcess(const std::string &path,
                                     std::chrono::seconds limit = std::chrono::seconds(10));

} // namespace nimbrel
