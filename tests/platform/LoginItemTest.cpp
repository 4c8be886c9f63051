#include "platform/LoginItem.h"

#include "platform/DesktopEntry.h"
#include "support/Files.h"
#include "support/PrivateDesktop.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace nimbrel::test {
namespace {

const QString program = QStringLiteral("/opt/nimbrel/bin/nimbrel");

class LoginItemTest : public testing::Test
{
protected:
    void write(const std::string &text)
    {
        std::filesystem::create_directories(_folder);
        writeFile(_path, text);
    }
    std::string entry() const { return readFile(_path); }
    bool isEnabledWith(const std::string &text)
    {
        write(text);
        return loginItem::isEnabled(program);
    }

    PrivateDesktop _desktop{{.bus = false, .keyring = false}};
    std::string _folder = _desktop.config() + "/autostart";
    std::string _path = _folder + "/com.nimbrel.Nimbrel.desktop";
};

TEST_F(LoginItemTest, WithoutAnEntryItIsOff)
{
    EXPECT_FALSE(loginItem::isEnabled(program));
}

TEST_F(LoginItemTest, EnablingWritesAWholeEntry)
{
    ASSERT_TRUE(loginItem::enable(program));
    EXPECT_EQ(entry(), "[Desktop Entry]\nType=Application\nName=Nimbrel\n"
                       "Exec=\"/opt/nimbrel/bin/nimbrel\" --launched-at-login\n"
                       "Icon=com.nimbrel.Nimbrel\nTerminal=false\n"
                       "X-GNOME-Autostart-enabled=true\nHidden=false\n");
    EXPECT_TRUE(loginItem::isEnabled(program));
}

TEST_F(LoginItemTest, DisablingHidesTheEntry)
{
    ASSERT_TRUE(loginItem::enable(program));
    ASSERT_TRUE(loginItem::disable(program));
    EXPECT_FALSE(loginItem::isEnabled(program));
    EXPECT_NE(entry().find("\nHidden=true\n"), std::string::npos);
}

TEST_F(LoginItemTest, DisablingWithoutAnEntryMakesNone)
{
    EXPECT_TRUE(loginItem::disable(program));
    EXPECT_FALSE(std::filesystem::exists(_path));
}

TEST_F(LoginItemTest, WhatAPersonAddedStays)
{
    write("# mine\n[Desktop Entry]\n# a comment\nType=Application\nName=Nimbrel\n"
          "Name[de]=Nimbrel auf Deutsch\nExec=" +
          program.toStdString() +
          " --mine\nX-Mine = 7 \r\nIcon=mine\nTerminal=true\nX-GNOME-Autostart-enabled=true\n"
          "Hidden=false\n\n[Desktop Action x]\nHidden=false\nName=x");
    const std::string before = entry();
    ASSERT_TRUE(loginItem::disable(program));
    std::string wanted = before;
    wanted.replace(wanted.find("Hidden=false"), 12, "Hidden=true");
    EXPECT_EQ(entry(), wanted);
    ASSERT_TRUE(loginItem::enable(program));
    EXPECT_EQ(entry(), before);
}

TEST_F(LoginItemTest, AMissingKeyGoesToTheEndOfItsGroup)
{
    write("[Desktop Entry]\nExec=" + program.toStdString() + "\n\n[Other]\nA=1\n");
    ASSERT_TRUE(loginItem::disable(program));
    EXPECT_EQ(entry(),
              "[Desktop Entry]\nExec=" + program.toStdString() + "\nHidden=true\n\n[Other]\nA=1\n");
}

TEST_F(LoginItemTest, AMissingEndOfTheLastLineIsAdded)
{
    write("[Desktop Entry]\nExec=" + program.toStdString());
    ASSERT_TRUE(loginItem::disable(program));
    EXPECT_EQ(entry(), "[Desktop Entry]\nExec=" + program.toStdString() + "\nHidden=true\n");
}

TEST_F(LoginItemTest, AnyOfTheTwoKeysSwitchesOff)
{
    const std::string start = "[Desktop Entry]\nExec=" + program.toStdString() + "\n";
    EXPECT_TRUE(isEnabledWith(start));
    EXPECT_TRUE(isEnabledWith(start + "Hidden=false\nX-GNOME-Autostart-enabled = true\r\n"));
    EXPECT_FALSE(isEnabledWith(start + "Hidden=true\n"));
    EXPECT_FALSE(isEnabledWith(start + " Hidden = true \r\n"));
    EXPECT_FALSE(isEnabledWith(start + "Hidden=1\n"));
    EXPECT_FALSE(isEnabledWith(start + "X-GNOME-Autostart-enabled=false\n"));
    EXPECT_TRUE(isEnabledWith(start + "#Hidden=true\n[Other]\nHidden=true\n"));
}

TEST_F(LoginItemTest, EnablingUndoesBothKeys)
{
    write("[Desktop Entry]\nExec=" + program.toStdString() +
          "\nHidden=true\nX-GNOME-Autostart-enabled=false\nHidden=true\n");
    ASSERT_TRUE(loginItem::enable(program));
    EXPECT_TRUE(loginItem::isEnabled(program));
    EXPECT_EQ(entry().find("Hidden=true"), std::string::npos);
}

TEST_F(LoginItemTest, AnotherProgramsEntryIsNotOurs)
{
    ASSERT_TRUE(loginItem::enable(QStringLiteral("/old/nimbrel")));
    EXPECT_FALSE(loginItem::isEnabled(program));
    EXPECT_TRUE(loginItem::disable(program));
    EXPECT_TRUE(loginItem::isEnabled(QStringLiteral("/old/nimbrel")));
}

TEST_F(LoginItemTest, EnablingTakesAnotherProgramsEntryOver)
{
    ASSERT_TRUE(loginItem::enable(QStringLiteral("/old/nimbrel")));
    ASSERT_TRUE(loginItem::enable(program));
    EXPECT_TRUE(loginItem::isEnabled(program));
    EXPECT_EQ(entry().find("/old/"), std::string::npos);
}

TEST_F(LoginItemTest, ALinkToTheProgramIsTheProgram)
{
    writeFile(_desktop.home() + "/real", "");
    std::filesystem::create_symlink("real", _desktop.home() + "/link");
    ASSERT_TRUE(loginItem::enable(QString::fromStdString(_desktop.home() + "/link")));
    EXPECT_TRUE(loginItem::isEnabled(QString::fromStdString(_desktop.home() + "/real")));
}

TEST_F(LoginItemTest, AFileThatIsNoEntryBecomesOne)
{
    EXPECT_FALSE(isEnabledWith("nonsense\nwithout a group\n"));
    ASSERT_TRUE(loginItem::enable(program));
    EXPECT_TRUE(loginItem::isEnabled(program));
    EXPECT_FALSE(isEnabledWith(""));
    ASSERT_TRUE(loginItem::enable(program));
    EXPECT_TRUE(loginItem::isEnabled(program));
    EXPECT_TRUE(entry().starts_with("[Desktop Entry]\nType=Application\n"));
}

TEST_F(LoginItemTest, WhatCannotBeWrittenIsTold)
{
    writeFile(_folder, "in the way");
    EXPECT_FALSE(loginItem::enable(program));
    EXPECT_FALSE(loginItem::isEnabled(program));
    EXPECT_EQ(readFile(_folder), "in the way");
}

TEST_F(LoginItemTest, AnEntryThatCannotBeReadIsLeftAlone)
{
    std::filesystem::create_directories(_path);
    EXPECT_FALSE(loginItem::enable(program));
    EXPECT_FALSE(loginItem::disable(program));
    EXPECT_TRUE(std::filesystem::is_directory(_path));
}

TEST_F(LoginItemTest, AnEntryIsReplacedInOneStepAndKeepsItsMode)
{
    ASSERT_TRUE(loginItem::enable(program));
    std::filesystem::rename(_path, _desktop.home() + "/real");
    ::chmod((_desktop.home() + "/real").c_str(), 0640);
    std::filesystem::create_symlink(_desktop.home() + "/real", _path);
    ASSERT_TRUE(loginItem::disable(program));
    EXPECT_TRUE(std::filesystem::is_symlink(_path));
    struct stat status = {};
    ASSERT_EQ(::stat(_path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
    EXPECT_FALSE(loginItem::isEnabled(program));
}

TEST_F(LoginItemTest, AnyPathComesBack)
{
    for (const char *path : {"/a b/nim\"brel", "/a\\b/$HOME/`x`", "/50%/100%% %u",
                             "/line\nfeed\tand\rmore", "/\u00c4pfel/'x'", "/a=b;#c&d"}) {
        const QString each = QString::fromUtf8(path);
        ASSERT_TRUE(loginItem::enable(each));
        EXPECT_TRUE(loginItem::isEnabled(each)) << path << "\n" << entry();
        EXPECT_FALSE(loginItem::isEnabled(each + u'x'));
        EXPECT_EQ(programOfExec(execValue(path, "-x")), QByteArray(path));
    }
}

// The specification's order: quoting first, then the escapes of a string value.
TEST(DesktopEntryTest, AnExecValueIsQuotedAndEscaped)
{
    EXPECT_EQ(execValue("/a b/nimbrel", "--x"), "\"/a b/nimbrel\" --x");
    EXPECT_EQ(execValue("/$a", "--x"), "\"/\\\\$a\" --x");
    EXPECT_EQ(execValue("/a\\b", "--x"), "\"/a\\\\\\\\b\" --x");
    EXPECT_EQ(execValue("/50%", "--x"), "\"/50%%\" --x");
    EXPECT_EQ(execValue("/a\nb", "--x"), "\"/a\\nb\" --x");
}

TEST(DesktopEntryTest, AHandWrittenExecValueIsUnderstood)
{
    EXPECT_EQ(programOfExec("/usr/bin/nimbrel"), "/usr/bin/nimbrel");
    EXPECT_EQ(programOfExec("/usr/bin/nimbrel %U --x"), "/usr/bin/nimbrel");
    EXPECT_EQ(programOfExec("/usr/bin/nimbrel\\s--x"), "/usr/bin/nimbrel");
    EXPECT_EQ(programOfExec("\"/a b\"\t--x"), "/a b");
    EXPECT_EQ(programOfExec("/a\\\\ b --x"), "/a b");
    EXPECT_EQ(programOfExec("/50%% x"), "/50%");
}

TEST(DesktopEntryTest, ABrokenExecValueHasNoProgram)
{
    EXPECT_EQ(programOfExec(""), "");
    EXPECT_EQ(programOfExec("\"/a b"), "");
    EXPECT_EQ(programOfExec("\"/a\\\\\""), "");
}

TEST(DesktopEntryTest, TheLastOfMoreValuesCounts)
{
    DesktopEntry entry("[Desktop Entry]\nA=1\nA=2\n");
    EXPECT_EQ(entry.value("A"), "2");
    entry.setValue("A", "3");
    EXPECT_EQ(entry.text(), "[Desktop Entry]\nA=3\nA=3\n");
    EXPECT_EQ(entry.value("B"), std::nullopt);
}

} // namespace
} // namespace nimbrel::test
