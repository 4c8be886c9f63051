// The tests themselves are proved on an ordinary disk: with NIMBREL_TEST_PLAIN=1 in the
// environment a MountedFolder is an ordinary folder below TMPDIR, nothing is mounted, and every
// test that isn't about encryption must pass there too. What fails there is the test's own fault.
#pragma once

#include <cstddef>
#include <gtest/gtest.h>

namespace nimbrel::test {

[[nodiscard]] bool onOrdinaryDisk();

// The longest name in bytes on the disk under test.
[[nodiscard]] std::size_t longestName();

// Ends a test, visibly skipped, that an ordinary disk can't pass.
#define NIMBREL_NEED_ENCRYPTED_DISK()                                                              \
    if (nimbrel::test::onOrdinaryDisk())                                                           \
    GTEST_SKIP() << "an ordinary disk is under test"

} // namespace nimbrel::test
