// Test bodies in a process of their own.
#pragma once

#include <functional>
#include <string>

namespace nimbrel::test {

// What became of a body; its failures are printed by the child.
struct ChildResult
{
    bool passed = false;
    std::string skipped; // why it couldn't run; empty where it did
};

// On a store of `size` bytes that stands at the folder the body gets. Needs root.
[[nodiscard]] ChildResult onSmallStore(std::size_t size,
                                       const std::function<void(const std::string &)> &body);

// As a user who isn't root and owns the empty folder that the body gets. Runs here where this is
// such a user.
[[nodiscard]] ChildResult asOrdinaryUser(const std::function<void(const std::string &)> &body);

// As root of a user namespace that knows no other user: there an item can't be given to one.
[[nodiscard]] ChildResult asLonelyRoot(const std::function<void(const std::string &)> &body);

// Ends the calling test with the child's verdict: failed, or visibly skipped.
void expectPassed(const ChildResult &result);

} // namespace nimbrel::test
