// Programs that people use on a disk.
#pragma once

#include "support/Process.h"

#include <gtest/gtest.h>
#include <string>

namespace nimbrel::test {

[[nodiscard]] inline bool isInstalled(const std::string &program)
{
    return shell("command -v " + program).status == 0;
}

// Ends a test, visibly skipped, where the program isn't installed.
#define NIMBREL_NEED_PROGRAM(program)                                                              \
    if (!nimbrel::test::isInstalled(program))                                                      \
    GTEST_SKIP() << program << " is not installed"

// The script, and that it ended well; stops at the first command that fails.
[[nodiscard]] inline testing::AssertionResult worked(const RunResult &result)
{
    if (result.status == 0)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "status " << result.status << "\n"
                                       << result.output << result.error;
}

} // namespace nimbrel::test
