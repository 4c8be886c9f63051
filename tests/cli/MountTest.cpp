#include "cli/Disk.h"
#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

namespace files = std::filesystem;

class MountTest : public testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_DISK(); }

    Workbench bench;
    Disk disk{bench};
    std::string folder = bench.encryptedFolder("p");
};

TEST_F(MountTest, ReturnsWhenTheDiskIsUsable)
{
    const RunResult mounted = disk.mount(folder);
    ASSERT_EQ(mounted.status, 0) << mounted.error;
    EXPECT_EQ(mounted.error, "");
    EXPECT_NE(mounted.output.find("nimbrelctl unmount "), std::string::npos) << mounted.output;
    writeFile(disk / "letter.txt", "dear reader");
    EXPECT_EQ(readFile(disk / "letter.txt"), "dear reader");
    EXPECT_EQ(disk.unmount().status, 0);
    EXPECT_FALSE(files::exists(disk / "letter.txt"));
    EXPECT_FALSE(files::exists(folder + "/letter.txt"));
}

TEST_F(MountTest, WhatWasStoredIsThereAfterTheNextMount)
{
    ASSERT_EQ(disk.mount(folder).status, 0);
    files::create_directory(disk / "Reports");
    writeFile(disk / "Reports/2026", noise(100000, 1));
    ASSERT_EQ(disk.unmount().status, 0);
    ASSERT_EQ(disk.mount(folder).status, 0);
    EXPECT_EQ(readFile(disk / "Reports/2026"), noise(100000, 1));
    // The names on the disk and in the folder are those that encode tells.
    const RunResult encoded = bench.nimbrelctl(
        {"encode", folder, "--password-file", bench.passwordFile("p"), "Reports/2026"});
    ASSERT_EQ(encoded.status, 0);
    EXPECT_TRUE(files::exists(folder + "/" + encoded.output.substr(0, encoded.output.size() - 1)));
}

TEST_F(MountTest, NothingRunsOnAfterTheUnmount)
{
    ASSERT_EQ(disk.mount(folder).status, 0);
    EXPECT_FALSE(disk.processes().empty());
    ASSERT_EQ(disk.unmount().status, 0);
    EXPECT_TRUE(eventually([&] { return disk.processes().empty(); }));
}

TEST_F(MountTest, TheDaemonEndsAfterAnUnmountFromOutside)
{
    ASSERT_EQ(disk.mount(folder).status, 0);
    ASSERT_EQ(shell(::geteuid() == 0 ? "umount '" + disk.path() + "'"
                                     : "fusermount3 -u '" + disk.path() + "'")
                  .status,
              0);
    EXPECT_TRUE(eventually([&] { return disk.processes().empty(); }));
}

// A shell waits for a command's output to close; a daemon that kept it open would hang scripts.
TEST_F(MountTest, TheDaemonLetsGoOfTheCallersPipes)
{
    const RunResult result =
        shell("text=$('" + bench.program() + "' mount '" + folder + "' '" + disk.path() +
                  "' --password-file '" + bench.passwordFile("p") + "' 2>&1 | cat); echo \"$text\"",
              bench.runOptions());
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.output.find("Mounted "), std::string::npos) << result.output;
}

TEST_F(MountTest, ThePasswordCanComeFromStandardInput)
{
    const RunResult mounted =
        bench.nimbrelctl({"mount", folder, disk.path(), "--password-file", "-"}, "p\n");
    EXPECT_EQ(mounted.status, 0) << mounted.error;
    EXPECT_TRUE(disk.isMounted());
}

TEST_F(MountTest, AWrongPasswordMountsNothing)
{
    expectComplaint(bench.nimbrelctl({"mount", folder, disk.path(), "--password-file",
                                      bench.passwordFile("wrong")}),
                    10, "Wrong password");
    EXPECT_FALSE(disk.isMounted());
    EXPECT_TRUE(eventually([&] { return disk.processes().empty(); }));
}

TEST_F(MountTest, RelativePathsWork)
{
    const RunResult mounted = bench.nimbrelctl({"mount", files::path(folder).filename(), "./disk/",
                                                "--password-file", bench.passwordFile("p")});
    EXPECT_EQ(mounted.status, 0) << mounted.error;
    writeFile(disk / "a", "a");
    EXPECT_EQ(bench.nimbrelctl({"unmount", "disk/"}).status, 0);
    EXPECT_FALSE(disk.isMounted());
}

TEST_F(MountTest, ReadOnlyForbidsChanges)
{
    ASSERT_EQ(disk.mount(folder, {"--read-only"}).status, 0);
    struct statvfs found = {};
    ASSERT_EQ(::statvfs(disk.path().c_str(), &found), 0);
    EXPECT_NE(found.f_flag & ST_RDONLY, 0U);
    EXPECT_NE(shell("touch '" + (disk / "new") + "'").status, 0);
}

TEST_F(MountTest, OptionsReachFuse)
{
    ASSERT_EQ(disk.mount(folder, {"-o", "noexec,ro", "-onoatime"}).status, 0);
    struct statvfs found = {};
    ASSERT_EQ(::statvfs(disk.path().c_str(), &found), 0);
    EXPECT_EQ(found.f_flag & (ST_RDONLY | ST_NOEXEC), ST_RDONLY | ST_NOEXEC);
}

TEST_F(MountTest, AnOptionThatFuseDoesNotKnowIsItsFailure)
{
    expectComplaint(disk.mount(folder, {"-o", "no_such_option"}), 1, "no_such_option");
    EXPECT_FALSE(disk.isMounted());
}

TEST_F(MountTest, OptionsThatTellWhoseDiskItIsCanNotBeGiven)
{
    for (const char *option : {"fsname=other", "ro,subtype=other", "suid", "dev", ""})
        expectComplaint(disk.mount(folder, {"-o", option}), 2, "can't be given");
    EXPECT_FALSE(disk.isMounted());
}

TEST_F(MountTest, TheMountTableTellsTheFolder)
{
    ASSERT_EQ(disk.mount(folder).status, 0);
    const RunResult found =
        run({"findmnt", "-n", "-t", "fuse.nimbrel", "-o", "SOURCE", disk.path()});
    EXPECT_EQ(found.output, folder + "\n");
}

TEST_F(MountTest, ThePasswordStandsInNoArgumentAndNoEnvironment)
{
    const std::string secret = "opensesame-4711";
    const std::string safe = bench.encryptedFolder(secret);
    ASSERT_EQ(
        bench
            .nimbrelctl({"mount", safe, disk.path(), "--password-file", bench.passwordFile(secret)})
            .status,
        0);
    ASSERT_FALSE(disk.processes().empty());
    for (const pid_t process : disk.processes()) {
        const std::string place = "/proc/" + std::to_string(process);
        EXPECT_EQ(readFile(place + "/cmdline").find(secret), std::string::npos);
        if (::geteuid() == 0) {
            EXPECT_EQ(readFile(place + "/environ").find(secret), std::string::npos);
        } else { // a process that can't be dumped hides even that from its user
            EXPECT_NE(::access((place + "/environ").c_str(), R_OK), 0);
        }
    }
}

TEST_F(MountTest, TheProcessCanNotBeDumped)
{
    ASSERT_EQ(disk.mount(folder).status, 0);
    for (const pid_t process : disk.processes()) {
        const std::string limits = readFile("/proc/" + std::to_string(process) + "/limits");
        EXPECT_NE(limits.find("Max core file size        0                    0 "),
                  std::string::npos)
            << limits;
    }
}

// Twice the common limit of 1024.
TEST_F(MountTest, ManyFilesMayBeOpen)
{
    ASSERT_EQ(disk.mount(folder).status, 0);
    const RunResult opened = run({"python3", "-c",
                                  "import resource, sys\n"
                                  "hard = resource.getrlimit(resource.RLIMIT_NOFILE)[1]\n"
                                  "if hard < 2300: sys.exit(77)\n"
                                  "resource.setrlimit(resource.RLIMIT_NOFILE, (2300, hard))\n"
                                  "files = [open(f'{sys.argv[1]}/{i}', 'w') for i in range(2100)]\n"
                                  "for f in files: f.write('x')\n"
                                  "for f in files: f.close()\n",
                                  disk.path()});
    if (opened.status == 77)
        GTEST_SKIP() << "this machine allows too few open files";
    EXPECT_EQ(opened.status, 0) << opened.error;
}

} // namespace

} // namespace nimbrel::test
