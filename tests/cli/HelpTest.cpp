#include "cli/Workbench.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

const std::vector<std::string> commands = {"create", "mount",  "unmount", "passwd",
                                           "info",   "encode", "decode"};

TEST(HelpTest, NamesEveryCommandAndExitStatus)
{
    const Workbench bench;
    const RunResult help = bench.nimbrelctl({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.error, "");
    for (const std::string &command : commands)
        EXPECT_NE(help.output.find("\n  " + command + " "), std::string::npos) << command;
    for (const char *status : {" 0  done", " 1  failed", " 2  ", "10  wrong", "11  ", "12  "})
        EXPECT_NE(help.output.find(status), std::string::npos) << status;
    EXPECT_NE(help.output.find("Examples:"), std::string::npos);
}

TEST(HelpTest, EachCommandTeachesByExample)
{
    const Workbench bench;
    for (const std::string &command : commands) {
        const RunResult help = bench.nimbrelctl({command, "--help"});
        EXPECT_EQ(help.status, 0) << command;
        EXPECT_NE(help.output.find("nimbrelctl " + command + " "), std::string::npos)
            << help.output;
        EXPECT_NE(help.output.find("Example"), std::string::npos) << command;
    }
}

TEST(HelpTest, VersionIsOneLine)
{
    const Workbench bench;
    const RunResult version = bench.nimbrelctl({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.output.starts_with("nimbrelctl ")) << version.output;
    EXPECT_EQ(version.output.find('\n'), version.output.size() - 1);
}

TEST(HelpTest, NoCommandIsAUsageError)
{
    const Workbench bench;
    expectComplaint(bench.nimbrelctl({}), 2, "nimbrelctl --help");
}

TEST(HelpTest, AnUnknownCommandIsAUsageError)
{
    const Workbench bench;
    expectComplaint(bench.nimbrelctl({"destroy"}), 2, "nimbrelctl --help");
}

TEST(HelpTest, AMissingArgumentIsNamed)
{
    const Workbench bench;
    expectComplaint(bench.nimbrelctl({"info"}), 2, "FOLDER");
    expectComplaint(bench.nimbrelctl({"mount", "a"}), 2, "MOUNTPOINT");
    expectComplaint(bench.nimbrelctl({"encode", "a"}), 2, "PATH");
}

TEST(HelpTest, APasswordGivenAsArgumentIsRefusedAndNotRepeated)
{
    const Workbench bench;
    const RunResult refused =
        bench.nimbrelctl({"passwd", bench / "folder", "--password", "hunter2"});
    expectComplaint(refused, 2, "--password is an unknown option");
    EXPECT_EQ(refused.error.find("hunter2"), std::string::npos);
    for (const char *argument : {"--password=hunter2", "-phunter2", "hunter2"}) {
        const RunResult other = bench.nimbrelctl({"passwd", bench / "folder", argument});
        EXPECT_EQ(other.status, 2) << argument;
        EXPECT_EQ(other.error.find("hunter2"), std::string::npos) << other.error;
    }
}

TEST(HelpTest, TwoPasswordSourcesExcludeEachOther)
{
    const Workbench bench;
    expectComplaint(bench.nimbrelctl({"encode", "folder", "name", "--password-file", "-",
                                      "--password-command", "true"}),
                    2, "--password-command");
}

TEST(HelpTest, AFullDiskBehindStandardOutputIsAnError)
{
    const Workbench bench;
    const RunResult written = shell("exec '" + bench.program() + "' --help >/dev/full");
    EXPECT_EQ(written.status, 1);
    EXPECT_NE(written.error.find("Standard output"), std::string::npos) << written.error;
}

} // namespace

} // namespace nimbrel::test
