#include "cli/Terminal.h"
#include "cli/Workbench.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

class PasswordPromptTest : public testing::Test
{
protected:
    [[nodiscard]] Terminal start(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), bench.program());
        return {arguments, bench.runOptions().environment};
    }

    Workbench bench;
};

TEST_F(PasswordPromptTest, WhatIsTypedIsNotShown)
{
    Terminal terminal = start({"encode", bench.encryptedFolder("opensesame"), "name"});
    ASSERT_TRUE(terminal.shows("Password for "));
    EXPECT_FALSE(terminal.echoes());
    terminal.type("opensesame\n");
    EXPECT_EQ(terminal.wait(), 0) << terminal.screen();
    EXPECT_EQ(terminal.screen().find("opensesame"), std::string::npos) << terminal.screen();
    EXPECT_TRUE(terminal.echoes());
}

TEST_F(PasswordPromptTest, AWrongAnswerEndsWithItsStatus)
{
    Terminal terminal = start({"encode", bench.encryptedFolder("opensesame"), "name"});
    ASSERT_TRUE(terminal.shows("Password for "));
    terminal.type("opensesam\n");
    EXPECT_EQ(terminal.wait(), 10);
    EXPECT_TRUE(terminal.shows("Wrong password"));
}

TEST_F(PasswordPromptTest, TypingErrorsCanBeMended)
{
    Terminal terminal = start({"encode", bench.encryptedFolder("opensesame"), "name"});
    ASSERT_TRUE(terminal.shows("Password for "));
    terminal.type("openx\x7fsesame\n");
    EXPECT_EQ(terminal.wait(), 0) << terminal.screen();
}

TEST_F(PasswordPromptTest, ANewPasswordIsAskedForTwice)
{
    const std::string folder = bench / "new";
    Terminal terminal = start({"create", folder});
    ASSERT_TRUE(terminal.shows("New password for "));
    terminal.type("opensesame\n");
    ASSERT_TRUE(terminal.shows("again: "));
    EXPECT_FALSE(terminal.echoes());
    terminal.type("opensesame\n");
    EXPECT_EQ(terminal.wait(), 0) << terminal.screen();
    EXPECT_EQ(terminal.screen().find("opensesame"), std::string::npos) << terminal.screen();
    EXPECT_EQ(bench
                  .nimbrelctl(
                      {"encode", folder, "n", "--password-file", bench.passwordFile("opensesame")})
                  .status,
              0);
}

TEST_F(PasswordPromptTest, TwoDifferentAnswersMakeNothing)
{
    Terminal terminal = start({"create", bench / "new"});
    ASSERT_TRUE(terminal.shows("New password for "));
    terminal.type("opensesame\n");
    ASSERT_TRUE(terminal.shows("again: "));
    terminal.type("opensesam\n");
    EXPECT_EQ(terminal.wait(), 1);
    EXPECT_TRUE(terminal.shows("differ"));
    EXPECT_FALSE(std::filesystem::exists(bench / "new"));
}

TEST_F(PasswordPromptTest, AnEmptyNewPasswordIsRefusedAtOnce)
{
    Terminal terminal = start({"create", bench / "new"});
    ASSERT_TRUE(terminal.shows("New password for "));
    terminal.type("\n");
    EXPECT_EQ(terminal.wait(), 1);
    EXPECT_TRUE(terminal.shows("Choose one"));
    EXPECT_FALSE(std::filesystem::exists(bench / "new"));
}

TEST_F(PasswordPromptTest, PasswdAsksForTheOldOneAndTheNewOne)
{
    const std::string folder = bench.encryptedFolder("first");
    Terminal terminal = start({"passwd", folder});
    ASSERT_TRUE(terminal.shows("Password for "));
    terminal.type("first\n");
    ASSERT_TRUE(terminal.shows("New password for "));
    terminal.type("second\n");
    ASSERT_TRUE(terminal.shows("again: "));
    terminal.type("second\n");
    EXPECT_EQ(terminal.wait(), 0) << terminal.screen();
}

TEST_F(PasswordPromptTest, AnInterruptRestoresTheEcho)
{
    Terminal terminal = start({"encode", bench.encryptedFolder("opensesame"), "name"});
    ASSERT_TRUE(terminal.shows("Password for "));
    ASSERT_FALSE(terminal.echoes());
    terminal.type("opense\x03");
    EXPECT_EQ(terminal.wait(), 128 + SIGINT);
    EXPECT_TRUE(terminal.echoes());
    EXPECT_EQ(terminal.screen().find("opense"), std::string::npos) << terminal.screen();
}

TEST_F(PasswordPromptTest, ATerminationRestoresTheEcho)
{
    Terminal terminal = start({"create", bench / "new"});
    ASSERT_TRUE(terminal.shows("New password for "));
    ::kill(terminal.id(), SIGTERM);
    EXPECT_EQ(terminal.wait(), 128 + SIGTERM);
    EXPECT_TRUE(terminal.echoes());
    EXPECT_FALSE(std::filesystem::exists(bench / "new"));
}

TEST_F(PasswordPromptTest, EndOfInputIsNoPassword)
{
    Terminal terminal = start({"encode", bench.encryptedFolder("opensesame"), "name"});
    ASSERT_TRUE(terminal.shows("Password for "));
    terminal.type("\x04");
    EXPECT_EQ(terminal.wait(), 1);
    EXPECT_TRUE(terminal.shows("No password was given"));
    EXPECT_TRUE(terminal.echoes());
}

// A shell with job control stops it in the middle and takes it up again.
TEST_F(PasswordPromptTest, AStoppedPromptGivesTheTerminalBackAndAsksAgain)
{
    Terminal terminal({"bash", "--norc", "--noprofile", "-i"}, {"PS1=ready> "});
    ASSERT_TRUE(terminal.shows("ready> "));
    terminal.type("'" + bench.program() + "' encode '" + bench.encryptedFolder("opensesame") +
                  "' name\n");
    ASSERT_TRUE(terminal.shows("Password for "));
    terminal.type("open\x1a");
    ASSERT_TRUE(terminal.shows("Stopped"));
    ASSERT_TRUE(terminal.shows("ready> "));
    terminal.type("fg\n");
    ASSERT_TRUE(terminal.shows("Password for "));
    EXPECT_TRUE(eventually([&] { return !terminal.echoes(); }));
    terminal.type("opensesame\n");
    EXPECT_TRUE(terminal.shows("ready> ")) << terminal.screen();
    EXPECT_EQ(terminal.screen().find("opensesame"), std::string::npos) << terminal.screen();
    terminal.type("exit\n");
    EXPECT_TRUE(terminal.wait().has_value());
}

} // namespace

} // namespace nimbrel::test
