// Other people on the machine, for tests that run as root.
#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace nimbrel::test {

struct OrdinaryUser
{
    uid_t user;
    gid_t group;
    std::vector<gid_t> groups = {}; // supplementary
};

// Numbers without an account: enough for everything but fusermount3, which asks for a name.
inline constexpr uid_t annsNumber = 60111;
inline constexpr uid_t bensNumber = 60112;
inline constexpr gid_t teamNumber = 60150;

[[nodiscard]] OrdinaryUser ann();
[[nodiscard]] OrdinaryUser ben();
// The same person as a member of the team, too.
[[nodiscard]] OrdinaryUser inTeam(OrdinaryUser user);

// The number of the account "nobody", which every system has; nothing where it hasn't.
[[nodiscard]] std::optional<uid_t> nobody();

// Runs `work` as that user, under umask 022, in a process of its own; what it returns, which must
// be below 99, or 128 + the signal that ended it.
[[nodiscard]] int as(const OrdinaryUser &who, const std::function<int()> &work);

// Why tests can't act as other users here; empty where they can.
[[nodiscard]] std::string whyNoUsers();

// End a test, visibly skipped, where other users (one with an account) can't be played.
#define NIMBREL_NEED_USERS()                                                                       \
    if (const std::string lack = nimbrel::test::whyNoUsers(); !lack.empty())                       \
    GTEST_SKIP() << lack
#define NIMBREL_NEED_ACCOUNT()                                                                     \
    NIMBREL_NEED_USERS();                                                                          \
    if (!nimbrel::test::nobody())                                                                  \
    GTEST_SKIP() << "no account \"nobody\" on this machine"

} // namespace nimbrel::test
