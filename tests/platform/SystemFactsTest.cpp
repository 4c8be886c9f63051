#include "platform/SystemFacts.h"

#include "support/Files.h"
#include "support/PrivateDesktop.h"
#include "support/Process.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

std::string versionOf(const char *release)
{
    return systemFacts::versionOfRelease(QString::fromUtf8(release)).toStdString();
}

TEST(SystemFactsTest, AReleasesThreeNumbersAreItsVersion)
{
    EXPECT_EQ(versionOf("6.1.0-13-amd64"), "6.1.0");
    EXPECT_EQ(versionOf("5.15.167.4-microsoft-standard-WSL2"), "5.15.167");
    EXPECT_EQ(versionOf("10.20.30"), "10.20.30");
}

TEST(SystemFactsTest, MissingNumbersAreZero)
{
    EXPECT_EQ(versionOf("6.1-rc3"), "6.1.0");
    EXPECT_EQ(versionOf("6"), "6.0.0");
    EXPECT_EQ(versionOf("6.x.3"), "6.0.0");
    EXPECT_EQ(versionOf(""), "0.0.0");
    EXPECT_EQ(versionOf("unknown 1.2.3"), "0.0.0");
    EXPECT_EQ(versionOf("99999999999.1.2"), "0.1.2");
}

TEST(SystemFactsTest, TheVersionIsThisKernels)
{
    const RunResult release = run({"uname", "-r"});
    EXPECT_EQ(systemFacts::version().toStdString(), versionOf(release.output.c_str()));
    EXPECT_NE(systemFacts::version(), u"0.0.0"_qs);
}

class SerialNumberTest : public testing::Test
{
protected:
    std::string numberOf(const std::string &text)
    {
        writeFile(_temp / "machine-id", text);
        return read();
    }
    std::string read() const
    {
        return systemFacts::serialNumberIn(QString::fromStdString(_temp / "machine-id"))
            .toStdString();
    }

    TempFolder _temp;
};

TEST_F(SerialNumberTest, TheNumberIsTheMachines)
{
    EXPECT_EQ(numberOf("0123456789abcdef0123456789abcdef\n"), "0123456789abcdef0123456789abcdef");
}

TEST_F(SerialNumberTest, WhatIsNoNumberIsNone)
{
    EXPECT_EQ(numberOf("uninitialized\n"), "");
    EXPECT_EQ(numberOf(""), "");
    EXPECT_EQ(numberOf("0123456789abcdef"), "");
    EXPECT_EQ(numberOf(std::string(5000, 'a')), "");
}

TEST_F(SerialNumberTest, AMissingFileIsNone)
{
    EXPECT_EQ(read(), "");
}

TEST(SystemFactsTest, TheSerialNumberIsThisMachines)
{
    EXPECT_EQ(systemFacts::serialNumber(), systemFacts::serialNumberIn(u"/etc/machine-id"_qs));
}

TEST(SystemFactsTest, TheUserHasANameOrANumber)
{
    const RunResult name = run({"id", "-un"});
    const std::string wanted = name.status == 0 ? name.output.substr(0, name.output.find('\n'))
                                                : std::to_string(::geteuid());
    EXPECT_EQ(systemFacts::userName().toStdString(), wanted);
}

TEST(SystemFactsTest, TheProgramIsThisOne)
{
    EXPECT_EQ(systemFacts::programPath().toStdString(),
              std::filesystem::read_symlink("/proc/self/exe").string());
}

class UserFoldersTest : public testing::Test
{
protected:
    std::string desktopWith(const std::string &text)
    {
        writeFile(_desktop.config() + "/user-dirs.dirs", text);
        return systemFacts::desktopFolder().toStdString();
    }

    PrivateDesktop _desktop{{.bus = false, .keyring = false}};
};

TEST_F(UserFoldersTest, TheVariablesNameTheFolders)
{
    ::setenv("XDG_CONFIG_HOME", "/c", 1);
    ::setenv("XDG_DATA_HOME", "/d", 1);
    ::setenv("XDG_STATE_HOME", "/s", 1);
    EXPECT_EQ(systemFacts::configFolder(), u"/c"_qs);
    EXPECT_EQ(systemFacts::dataFolder(), u"/d"_qs);
    EXPECT_EQ(systemFacts::stateFolder(), u"/s"_qs);
}

TEST_F(UserFoldersTest, WithoutAVariableTheFoldersLieBelowTheHomeFolder)
{
    ::unsetenv("XDG_CONFIG_HOME");
    ::setenv("XDG_DATA_HOME", "", 1);
    ::setenv("XDG_STATE_HOME", "relative", 1); // doesn't count
    const QString home = QString::fromStdString(_desktop.home());
    EXPECT_EQ(systemFacts::homeFolder(), home);
    EXPECT_EQ(systemFacts::configFolder(), home + u"/.config"_qs);
    EXPECT_EQ(systemFacts::dataFolder(), home + u"/.local/share"_qs);
    EXPECT_EQ(systemFacts::stateFolder(), home + u"/.local/state"_qs);
}

TEST_F(UserFoldersTest, WithoutItsVariableTheHomeFolderIsTheAccounts)
{
    const std::string own = run({"sh", "-c", "getent passwd \"$(id -u)\" | cut -d: -f6"}).output;
    if (own.size() < 2)
        GTEST_SKIP() << "this user has no account";
    ::unsetenv("HOME");
    EXPECT_EQ(systemFacts::homeFolder().toStdString() + "\n", own);
    ::setenv("HOME", "relative", 1);
    EXPECT_EQ(systemFacts::homeFolder().toStdString() + "\n", own);
}

TEST_F(UserFoldersTest, ASlashAtTheEndOfTheHomeFolderIsTakenOff)
{
    ::setenv("HOME", "/home/me//", 1);
    EXPECT_EQ(systemFacts::homeFolder(), u"/home/me"_qs);
    ::setenv("HOME", "/", 1);
    EXPECT_EQ(systemFacts::homeFolder(), u"/"_qs);
}

TEST_F(UserFoldersTest, WithoutAFileTheDesktopHasItsUsualName)
{
    EXPECT_EQ(systemFacts::desktopFolder().toStdString(), _desktop.home() + "/Desktop");
}

TEST_F(UserFoldersTest, TheFileNamesTheDesktop)
{
    EXPECT_EQ(desktopWith("# comment\nXDG_DESKTOP_DIR=\"$HOME/Schreib tisch\"\n"
                          "XDG_MUSIC_DIR=\"$HOME/Musik\"\n"),
              _desktop.home() + "/Schreib tisch");
    EXPECT_EQ(desktopWith(" XDG_DESKTOP_DIR = \"/elsewhere/\"\n"), "/elsewhere");
    EXPECT_EQ(desktopWith("XDG_DESKTOP_DIR=\"/a\\\"b\\$c\""), "/a\"b$c");
    EXPECT_EQ(desktopWith("XDG_DESKTOP_DIR=\"/a\"\nXDG_DESKTOP_DIR=\"/b\"\n"), "/b");
}

TEST_F(UserFoldersTest, ADesktopThatIsTheHomeFolderIsIt)
{
    EXPECT_EQ(desktopWith("XDG_DESKTOP_DIR=\"$HOME/\"\n"), _desktop.home());
    EXPECT_EQ(desktopWith("XDG_DESKTOP_DIR=\"$HOME\"\n"), _desktop.home());
}

TEST_F(UserFoldersTest, ALineThatIsNotUnderstoodDoesNotCount)
{
    for (const char *line :
         {"XDG_DESKTOP_DIR=\"relative\"", "XDG_DESKTOP_DIR=\"/no end", "XDG_DESKTOP_DIR=/plain",
          "#XDG_DESKTOP_DIR=\"/x\"", "XDG_DESKTOP_DIR=", "XDG_DESKTOP_DIR=\"$HOMER/x\""})
        EXPECT_EQ(desktopWith(line), _desktop.home() + "/Desktop") << line;
}

} // namespace
} // namespace nimbrel::test
