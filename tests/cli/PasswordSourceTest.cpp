#include "cli/Workbench.h"
#include "support/Files.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

class PasswordSourceTest : public testing::Test
{
protected:
    // A command that needs the password, with these options.
    [[nodiscard]] RunResult open(std::vector<std::string> options,
                                 const std::string &input = {}) const
    {
        options.insert(options.begin(), {"encode", folder, "name"});
        return bench.nimbrelctl(options, input);
    }

    Workbench bench;
    std::string folder = bench.encryptedFolder("pass word");
};

TEST_F(PasswordSourceTest, AFilesFirstLine)
{
    EXPECT_EQ(open({"--password-file", bench.passwordFile("pass word")}).status, 0);
}

TEST_F(PasswordSourceTest, AFileWithoutANewline)
{
    writeFile(bench / "bare", "pass word");
    EXPECT_EQ(open({"--password-file", bench / "bare"}).status, 0);
}

TEST_F(PasswordSourceTest, StandardInput)
{
    EXPECT_EQ(open({"--password-file", "-"}, "pass word\nmore").status, 0);
    EXPECT_EQ(open({"--password-file", "-"}, "pass word").status, 0);
}

TEST_F(PasswordSourceTest, ACommandsFirstLine)
{
    EXPECT_EQ(open({"--password-command", "echo 'pass word'"}).status, 0);
    EXPECT_EQ(open({"--password-command", "printf 'pass word'"}).status, 0);
}

// It must see its output through, or it would end by SIGPIPE and count as failed.
TEST_F(PasswordSourceTest, ACommandMayPrintMuchMore)
{
    const RunResult opened =
        open({"--password-command", "echo 'pass word'; head -c 1000000 /dev/zero"});
    EXPECT_EQ(opened.status, 0) << opened.error;
}

TEST_F(PasswordSourceTest, ACommandInBracketsIsACommand)
{
    const RunResult failed = open({"--password-command", "[ -e /nowhere ]"});
    expectComplaint(failed, 1, "failed with status 1");
}

TEST_F(PasswordSourceTest, AFailingCommandGivesNoPassword)
{
    expectComplaint(open({"--password-command", "echo 'pass word'; exit 3"}), 1,
                    "failed with status 3");
    expectComplaint(open({"--password-command", "echo 'pass word'; kill -9 $$"}), 1, "signal 9");
}

TEST_F(PasswordSourceTest, ASilentCommandGivesNoPassword)
{
    expectComplaint(open({"--password-command", "true"}), 1, "printed nothing");
}

TEST_F(PasswordSourceTest, AnEmptyFileGivesNoPassword)
{
    writeFile(bench / "empty", "");
    expectComplaint(open({"--password-file", bench / "empty"}), 1, "no password");
    expectComplaint(open({"--password-file", "-"}), 1, "no password in standard input");
}

TEST_F(PasswordSourceTest, AFileThatCanNotBeReadIsNamed)
{
    expectComplaint(open({"--password-file", bench / "nowhere"}), 1, "nowhere: No such file");
    expectComplaint(open({"--password-file", bench.makeFolder("folder")}), 1, "Is a directory");
}

TEST_F(PasswordSourceTest, AFileWithoutAnEndIsNoPassword)
{
    expectComplaint(open({"--password-file", "/dev/zero"}), 1, "over 4096 bytes");
}

TEST_F(PasswordSourceTest, LongPasswordsOfAnyBytesWork)
{
    for (const std::string &password : {std::string(4096, 'x'), std::string("zero\0inside", 11),
                                        std::string("\xff\xfe\r"), std::string("Grüße ✓")}) {
        const std::string made = bench.encryptedFolder(password);
        const std::string right = bench.passwordFile(password);
        EXPECT_EQ(bench.nimbrelctl({"encode", made, "n", "--password-file", right}).status, 0);
        const std::string wrong = bench.passwordFile(password.substr(0, password.size() - 1));
        EXPECT_EQ(bench.nimbrelctl({"encode", made, "n", "--password-file", wrong}).status, 10);
    }
}

TEST_F(PasswordSourceTest, NoOptionAndNoTerminalNamesTheOptions)
{
    // setsid: the person who runs the tests may have a terminal.
    for (const std::vector<std::string> &arguments :
         {std::vector<std::string>{"encode", folder, "n"},
          {"passwd", folder},
          {"create", bench / "new"}}) {
        std::vector<std::string> command{"setsid", "-w", bench.program()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        const RunResult refused = run(command, bench.runOptions("pass word\n"));
        expectComplaint(refused, 2, "--password-file FILE or --password-command CMD");
    }
}

} // namespace

} // namespace nimbrel::test
