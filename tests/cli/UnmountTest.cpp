#include "cli/Disk.h"
#include "support/Files.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

namespace files = std::filesystem;

TEST(UnmountTest, AFolderWithoutADiskIsTrouble)
{
    const Workbench bench;
    expectComplaint(bench.nimbrelctl({"unmount", bench.makeFolder("plain")}), 12,
                    "not a mounted disk");
    expectComplaint(bench.nimbrelctl({"unmount", bench / "nowhere"}), 12, "can't be found");
    expectComplaint(bench.nimbrelctl({"unmount", ""}), 12, "empty");
}

TEST(UnmountTest, ADiskOfAnotherKindIsLeftAlone)
{
    const Workbench bench;
    expectComplaint(bench.nimbrelctl({"unmount", "/proc"}), 12, "not a mounted disk");
    expectComplaint(bench.nimbrelctl({"unmount", "/"}), 12, "not a mounted disk");
    EXPECT_TRUE(files::exists("/proc/self"));
}

class UnmountDiskTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_DISK();
        const RunResult mounted = disk.mount(folder);
        ASSERT_EQ(mounted.status, 0) << mounted.error;
    }

    Workbench bench;
    std::string folder = bench.encryptedFolder("p");
    Disk disk{bench};
};

TEST_F(UnmountDiskTest, AnySpellingOfThePathWill)
{
    files::create_directory_symlink(disk.path(), bench / "link");
    files::create_directory_symlink(bench / ".", bench / "here");
    const std::vector<std::string> spellings = {
        "disk",        "./disk//", disk.path() + "/", bench / "here/disk", bench / "state/../disk",
        bench / "link"};
    (void)bench.makeFolder("state");
    for (const std::string &spelling : spellings) {
        if (!disk.isMounted()) {
            ASSERT_EQ(disk.mount(folder).status, 0);
        }
        const RunResult done = bench.nimbrelctl({"unmount", spelling});
        EXPECT_EQ(done.status, 0) << spelling << ' ' << done.error;
        EXPECT_FALSE(disk.isMounted()) << spelling;
    }
}

TEST_F(UnmountDiskTest, TheEncryptedFolderIsNotItsDisk)
{
    expectComplaint(bench.nimbrelctl({"unmount", folder}), 12, "Its disk is at " + disk.path());
    EXPECT_TRUE(disk.isMounted());
}

TEST_F(UnmountDiskTest, ABusyDiskStaysAndTheHolderIsNamed)
{
    writeFile(disk / "open.txt", "text");
    const RunningProcess holder({"sh", "-c", "exec sleep 600 <\"$1\"", "sh", disk / "open.txt"});
    ASSERT_TRUE(eventually(
        [&] { return readFile("/proc/" + std::to_string(holder.id()) + "/comm") == "sleep\n"; }));
    const RunResult refused = disk.unmount();
    expectComplaint(refused, 12, "sleep (" + std::to_string(holder.id()) + ")");
    EXPECT_NE(refused.error.find("open.txt"), std::string::npos) << refused.error;
    EXPECT_EQ(readFile(disk / "open.txt"), "text");
    holder.signal(SIGKILL);
    EXPECT_TRUE(eventually([&] { return disk.unmount().status == 0; }));
}

TEST_F(UnmountDiskTest, ADeadDiskIsClearedAway)
{
    ASSERT_TRUE(disk.killServer());
    ASSERT_TRUE(disk.isMounted());
    const RunResult done = disk.unmount();
    EXPECT_EQ(done.status, 0) << done.error;
    EXPECT_FALSE(disk.isMounted());
}

} // namespace

} // namespace nimbrel::test
