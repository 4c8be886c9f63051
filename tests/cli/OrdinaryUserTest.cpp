// What root can do, an ordinary user can do, too, and what he can't is said.
#include "cli/Disk.h"
#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

namespace files = std::filesystem;

class OrdinaryUserTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (::geteuid() != 0)
            GTEST_SKIP() << "the other tests run as an ordinary user already";
        bench = std::make_unique<Workbench>(ordinaryUser);
    }

    std::unique_ptr<Workbench> bench;
};

TEST_F(OrdinaryUserTest, AnUnreadableFolderIsRefused)
{
    const std::string folder = bench->encryptedFolder("p");
    ::chmod(folder.c_str(), 0);
    expectComplaint(bench->nimbrelctl({"info", folder}), 11, "Permission denied");
    ::chmod(folder.c_str(), 0755);
    ::chmod((folder + "/.encfs6.xml").c_str(), 0);
    expectComplaint(bench->nimbrelctl({"info", folder}), 11, "Permission denied");
}

TEST_F(OrdinaryUserTest, APlaceThatIsNotHisIsRefused)
{
    ASSERT_EQ(::mkdir((*bench / "roots").c_str(), 0755), 0);
    ASSERT_EQ(::chown((*bench / "roots").c_str(), 0, 0), 0);
    expectComplaint(bench->nimbrelctl({"create", *bench / "roots/new", "--password-file",
                                       bench->passwordFile("p")}),
                    1, "Permission denied");
}

TEST_F(OrdinaryUserTest, APlaceThatHeCanNotLookIntoIsRefusedForThatReason)
{
    ASSERT_EQ(::mkdir((*bench / "closed").c_str(), 0700), 0);
    ASSERT_EQ(::chown((*bench / "closed").c_str(), 0, 0), 0);
    expectComplaint(bench->nimbrelctl({"create", *bench / "closed/new", "--password-file",
                                       bench->passwordFile("p")}),
                    1, "Permission denied");
}

TEST_F(OrdinaryUserTest, MountsAndUnmountsOnHisOwn)
{
    NIMBREL_NEED_DISK();
    if (shell("command -v fusermount3").status != 0)
        GTEST_SKIP() << "fusermount3 isn't installed";
    const std::string folder = bench->encryptedFolder("p");
    const Disk disk(*bench);
    const RunResult mounted = disk.mount(folder);
    ASSERT_EQ(mounted.status, 0) << mounted.error;
    const std::string script = "umask 027; echo text >'" + (disk / "file") + "' && mkdir '" +
                               (disk / "sub") + "' && cat '" + (disk / "file") + "'";
    const RunResult used = shell(script, bench->runOptions());
    EXPECT_EQ(used.output, "text\n") << used.error;
    const RunResult done = disk.unmount();
    EXPECT_EQ(done.status, 0) << done.error;
    EXPECT_FALSE(disk.isMounted());
    EXPECT_TRUE(eventually([&] { return disk.processes().empty(); }));
}

TEST_F(OrdinaryUserTest, ABusyDiskNamesItsHolderToHimToo)
{
    NIMBREL_NEED_DISK();
    if (shell("command -v fusermount3").status != 0)
        GTEST_SKIP() << "fusermount3 isn't installed";
    const Disk disk(*bench);
    ASSERT_EQ(disk.mount(bench->encryptedFolder("p")).status, 0);
    const RunningProcess holder({"sh", "-c", "cd \"$1\" && exec sleep 600", "sh", disk.path()},
                                bench->runOptions());
    ASSERT_TRUE(eventually(
        [&] { return readFile("/proc/" + std::to_string(holder.id()) + "/comm") == "sleep\n"; }));
    expectComplaint(disk.unmount(), 12, "sleep (" + std::to_string(holder.id()) + ")");
    holder.signal(SIGKILL);
    EXPECT_TRUE(eventually([&] { return disk.unmount().status == 0; }));
}

TEST_F(OrdinaryUserTest, ADeadDiskIsClearedAway)
{
    NIMBREL_NEED_DISK();
    if (shell("command -v fusermount3").status != 0)
        GTEST_SKIP() << "fusermount3 isn't installed";
    const Disk disk(*bench);
    ASSERT_EQ(disk.mount(bench->encryptedFolder("p")).status, 0);
    ASSERT_TRUE(disk.killServer());
    const RunResult done = disk.unmount();
    EXPECT_EQ(done.status, 0) << done.error;
    EXPECT_FALSE(disk.isMounted());
}

TEST_F(OrdinaryUserTest, AnotherUsersDiskIsNotHisToUnmount)
{
    NIMBREL_NEED_DISK();
    const Workbench roots;
    const Disk disk(roots);
    ASSERT_EQ(disk.mount(roots.encryptedFolder("p")).status, 0);
    expectComplaint(bench->nimbrelctl({"unmount", disk.path()}), 12, "another user");
    EXPECT_TRUE(disk.isMounted());
}

TEST_F(OrdinaryUserTest, NobodyElseOfHisReadsTheServersMemory)
{
    NIMBREL_NEED_DISK();
    if (shell("command -v fusermount3").status != 0)
        GTEST_SKIP() << "fusermount3 isn't installed";
    const Disk disk(*bench);
    ASSERT_EQ(disk.mount(bench->encryptedFolder("p")).status, 0);
    for (const pid_t process : disk.processes())
        for (const char *file : {"mem", "environ"})
            EXPECT_NE(shell("head -c 1 /proc/" + std::to_string(process) + "/" + file,
                            bench->runOptions())
                          .status,
                      0);
}

} // namespace

} // namespace nimbrel::test
