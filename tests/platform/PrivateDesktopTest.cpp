#include "support/PrivateDesktop.h"

#include "support/Files.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

RunResult lookUp()
{
    return run({"secret-tool", "lookup", "service", "X", "account", "Y"});
}

void store(const std::string &secret)
{
    const RunResult stored = run(
        {"secret-tool", "store", "--label=x", "service", "X", "account", "Y"}, {.input = secret});
    ASSERT_EQ(stored.status, 0) << stored.error;
}

TEST(PrivateDesktopTest, KeyringAnswersOnAPrivateBus)
{
    const PrivateDesktop desktop;
    store("one");
    EXPECT_EQ(lookUp().output, "one");
    EXPECT_TRUE(std::filesystem::exists(desktop.data() + "/keyrings/login.keyring"));
}

TEST(PrivateDesktopTest, LockedKeyringGivesNothingUntilItIsUnlocked)
{
    PrivateDesktop desktop;
    store("one");
    for (int round = 0; round < 3; ++round) {
        desktop.lockKeyring();
        EXPECT_NE(lookUp().status, 0);
        desktop.unlockKeyring();
        EXPECT_EQ(lookUp().output, "one");
    }
}

TEST(PrivateDesktopTest, ItemsOutliveTheKeyringProgram)
{
    PrivateDesktop desktop;
    store("one");
    desktop.stopKeyring();
    EXPECT_NE(lookUp().status, 0);
    desktop.startKeyring();
    EXPECT_EQ(lookUp().output, "one");
}

TEST(PrivateDesktopTest, VariablesAreAsBeforeAfterwards)
{
    ::setenv("HOME", "/nowhere", 1);
    ::unsetenv("XDG_RUNTIME_DIR");
    {
        const PrivateDesktop desktop({.bus = false});
        EXPECT_EQ(std::getenv("HOME"), desktop.home());
        EXPECT_NE(std::getenv("XDG_RUNTIME_DIR"), nullptr);
    }
    EXPECT_STREQ(std::getenv("HOME"), "/nowhere");
    EXPECT_EQ(std::getenv("XDG_RUNTIME_DIR"), nullptr);
}

TEST(PrivateDesktopTest, WithoutABusNobodyAnswers)
{
    const PrivateDesktop desktop({.bus = false});
    EXPECT_NE(lookUp().status, 0);
    EXPECT_FALSE(std::filesystem::exists(desktop.home() + "/.dbus"));
}

// Programs that name the folder of a desktop in their arguments or environment.
int programsOf(const std::string &home)
{
    int found = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc")) {
        std::error_code error;
        const std::string path = entry.path() / "environ";
        if (std::filesystem::exists(path, error) && ::access(path.c_str(), R_OK) == 0)
            try {
                found += readFile(path).find("HOME=" + home) != std::string::npos ? 1 : 0;
            } catch (const std::runtime_error &) {
                continue; // it ended meanwhile
            }
    }
    return found;
}

TEST(PrivateDesktopTest, ProgramsEndWithTheDesktop)
{
    std::string home;
    {
        const PrivateDesktop desktop;
        home = desktop.home();
        EXPECT_EQ(programsOf(home), 2); // bus and keyring
    }
    EXPECT_EQ(programsOf(home), 0);
}

TEST(PrivateDesktopTest, ProgramsEndWithAKilledTest)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const PrivateDesktop desktop;
        const std::string home = desktop.home() + "\n";
        (void)!::write(ends[1], home.data(), home.size());
        for (;;)
            ::pause();
    }
    std::array<char, 4096> buffer{};
    const ssize_t size = ::read(ends[0], buffer.data(), buffer.size());
    ASSERT_GT(size, 1);
    const std::string home(buffer.data(), static_cast<std::size_t>(size) - 1);
    EXPECT_GT(programsOf(home), 0);
    ::kill(child, SIGKILL);
    EXPECT_TRUE(eventually([&] { return programsOf(home) == 0; }));
    ::waitpid(child, nullptr, 0);
    for (const int end : ends)
        ::close(end);
    std::filesystem::remove_all(std::filesystem::path(home).parent_path());
}

} // namespace

} // namespace nimbrel::test
