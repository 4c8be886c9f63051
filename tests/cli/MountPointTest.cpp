#include "cli/Disk.h"
#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

namespace files = std::filesystem;

class MountPointTest : public testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_DISK(); }

    // Refused with status 12 and `text`, before a password is asked for.
    void expectTrouble(const std::string &mountPoint, std::string_view text) const
    {
        const std::string mark = bench / "was-asked";
        const std::string before = snapshot(folder);
        expectComplaint(bench.nimbrelctl({"mount", folder, mountPoint, "--password-command",
                                          "touch '" + mark + "'; echo p"}),
                        12, text);
        EXPECT_FALSE(files::exists(mark));
        EXPECT_EQ(snapshot(folder), before);
    }

    Workbench bench;
    std::string folder = bench.encryptedFolder("p");
};

TEST_F(MountPointTest, OneThatIsNotThere)
{
    expectTrouble(bench / "nowhere", "doesn't exist");
}

TEST_F(MountPointTest, AFile)
{
    writeFile(bench / "file", "mine");
    expectTrouble(bench / "file", "isn't a folder");
}

TEST_F(MountPointTest, AFolderThatHoldsSomething)
{
    const std::string full = bench.makeFolder("full");
    writeFile(full + "/mine", "mine");
    expectTrouble(full, "isn't empty");
}

TEST_F(MountPointTest, NonemptyLiftsThat)
{
    const Disk disk(bench);
    writeFile(disk / "hidden", "mine");
    const RunResult mounted = disk.mount(folder, {"-o", "nonempty"});
    EXPECT_EQ(mounted.status, 0) << mounted.error;
    EXPECT_FALSE(files::exists(disk / "hidden"));
    EXPECT_EQ(disk.unmount().status, 0);
    EXPECT_EQ(readFile(disk / "hidden"), "mine");
}

TEST_F(MountPointTest, OneWithADiskAlready)
{
    const Disk disk(bench);
    ASSERT_EQ(disk.mount(folder).status, 0);
    expectTrouble(disk.path(), "already");
    EXPECT_EQ(disk.unmount().status, 0);
    EXPECT_FALSE(disk.isMounted());
}

TEST_F(MountPointTest, InsideTheEncryptedFolder)
{
    files::create_directory(folder + "/inside");
    expectTrouble(folder + "/inside", "inside the encrypted folder");
    expectTrouble(folder, "the encrypted folder itself");
}

TEST_F(MountPointTest, AboveTheEncryptedFolder)
{
    expectTrouble(files::path(folder).parent_path(), "holds the encrypted folder");
}

TEST_F(MountPointTest, ADeadDiskIsClearedAway)
{
    const Disk disk(bench);
    ASSERT_EQ(disk.mount(folder).status, 0);
    ASSERT_TRUE(disk.killServer());
    ASSERT_TRUE(disk.isMounted());
    const RunResult again = disk.mount(folder);
    EXPECT_EQ(again.status, 0) << again.error;
    writeFile(disk / "alive", "yes");
    EXPECT_EQ(disk.unmount().status, 0);
    EXPECT_FALSE(disk.isMounted());
}

TEST_F(MountPointTest, WithoutFuseNothingIsAsked)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can hide the device";
    const RunResult refused =
        run({"unshare", "-m", "sh", "-c",
             "mount -t tmpfs none /dev || exit 77; exec \"$1\" mount \"$2\" \"$3\" "
             "--password-command \"touch '$4'; echo p\"",
             "sh", bench.program(), folder, bench.makeFolder("disk"), bench / "was-asked"},
            bench.runOptions());
    if (refused.status == 77 || refused.error.starts_with("unshare: "))
        GTEST_SKIP() << "no mount namespaces here";
    expectComplaint(refused, 1, "/dev/fuse");
    EXPECT_FALSE(files::exists(bench / "was-asked"));
}

} // namespace

} // namespace nimbrel::test
