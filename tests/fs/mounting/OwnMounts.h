// Tests that need mounts of their own, or another user.
#pragma once

#include <functional>
#include <string>
#include <sys/types.h>

namespace nimbrel::test {

// Gives this process a view of its own: what it mounts, nobody else sees, and it goes with the
// process. Why not, or empty.
[[nodiscard]] std::string enterOwnMounts();

#define NIMBREL_NEED_OWN_MOUNTS()                                                                  \
    if (const std::string why = nimbrel::test::enterOwnMounts(); !why.empty())                     \
    GTEST_SKIP() << why

// mount(8) of a bind mount or a small memory disk; throws std::runtime_error.
void bindMount(const std::string &folder, const std::string &mountPoint);
void mountMemory(const std::string &mountPoint);
void unmountAll(const std::string &mountPoint);

// Who is neither root nor the owner of anything here.
inline constexpr uid_t nobody = 65534;

// Runs `question` in a child process, as `nobody` when this one is root, and gives its answer.
[[nodiscard]] std::string asOrdinaryUser(const std::function<std::string()> &question);

// Why `nobody` can't work below `folder`: one above it may be closed to others. Empty where he can.
[[nodiscard]] std::string whyNoOrdinaryUserIn(const std::string &folder);

#define NIMBREL_NEED_ORDINARY_USER_IN(folder)                                                      \
    if (const std::string why = nimbrel::test::whyNoOrdinaryUserIn(folder); !why.empty())          \
    GTEST_SKIP() << why

// The same as the user that the test runs as.
[[nodiscard]] std::string inChild(const std::function<std::string()> &question);

} // namespace nimbrel::test
