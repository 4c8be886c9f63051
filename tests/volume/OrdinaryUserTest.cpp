// The volumes of a person who isn't root: fusermount3 mounts, and rights count.
#include "fs/MountTable.h"
#include "volume/Driver.h"
#include "volume/VolumeFixture.h"

#include <algorithm>
#include <csignal>
#include <pwd.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

constexpr const char *accountName = "nimbrel-test";

std::optional<uid_t> accountNumber()
{
    const passwd *entry = ::getpwnam(accountName);
    return entry == nullptr ? std::nullopt : std::optional<uid_t>(entry->pw_uid);
}

// An account of no rights: fusermount3 asks for the name of whoever mounts. Tests that run beside
// each other may both want to make it, and the one that is refused finds it a moment later.
std::optional<uid_t> ordinaryAccount()
{
    RunResult made;
    const bool isThere = eventually([&] {
        if (accountNumber())
            return true;
        made = run({"useradd", "--system", "--no-create-home", "--shell", "/usr/sbin/nologin",
                    accountName});
        return made.status == 127 || accountNumber().has_value();
    });
    return isThere ? accountNumber() : std::nullopt;
}

class OrdinaryUserTest : public VolumeFixture
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_MOUNTS();
        if (::geteuid() != 0)
            return;
        user = ordinaryAccount();
        if (!user)
            GTEST_SKIP() << "no account for an ordinary user can be made";
        handOver(fs::path(desk.home()).parent_path());
    }
    void TearDown() override { detachAll(point()); }

    // Gives the folder and all that it holds to the user. Other disks may lie in it.
    void handOver(const fs::path &folder) const
    {
        if (!user)
            return;
        ASSERT_EQ(::lchown(folder.c_str(), *user, *user), 0) << folder;
        for (const auto &entry : fs::recursive_directory_iterator(folder))
            ASSERT_EQ(::lchown(entry.path().c_str(), *user, *user), 0) << entry.path();
    }
    [[nodiscard]] std::string drive(const std::vector<DriverCommand> &commands)
    {
        return runDriver(desk.desktop(), commands, user);
    }
    [[nodiscard]] std::unique_ptr<RunningProcess> start(const std::vector<DriverCommand> &commands)
    {
        return startDriver(desk.desktop(), commands, user);
    }
    [[nodiscard]] RunResult asUser(const std::vector<std::string> &command) const
    {
        return run(command, {.user = user});
    }
    static bool says(const RunningProcess &session, const std::string &line)
    {
        return eventually([&] { return countLines(session.log(), line) > 0; });
    }
    [[nodiscard]] DriverCommand newSafe() const
    {
        return {"new", desk.home() + "/Safe.nmc", "Safe", std::string(rightPassword)};
    }
    static DriverCommand answer() { return {"answer", std::string(rightPassword)}; }
    void makeSafe()
    {
        const std::string log = drive(
            {newSafe(), {"write", "Safe", "a.txt", "my words"}, {"unmount", "Safe"}, {"save"}});
        ASSERT_EQ(countLines(log, "unmount\tSafe\tyes"), 1) << log;
    }
    [[nodiscard]] std::string volumes() const { return desk.home() + "/Volumes"; }
    [[nodiscard]] std::string point() const
    {
        return fs::weakly_canonical(desk.home()).string() + "/Volumes/Safe";
    }
    // Mounts in a session that is killed, and waits until the disk has gone.
    void killSession();
    [[nodiscard]] RunResult writeIntoMountPoint() const
    {
        return asUser({"sh", "-c", "echo 'plain words' > \"$0/secret.txt\"", point()});
    }

    std::optional<uid_t> user; // nothing: whoever runs the tests
};

void OrdinaryUserTest::killSession()
{
    const auto session =
        start({answer(), {"mount", "Safe"}, {"await-file", desk.home() + "/never"}});
    ASSERT_TRUE(says(*session, "mount\tSafe\tyes")) << session->log();
    session->signal(SIGKILL);
    ASSERT_TRUE(session->wait(std::chrono::seconds(30)));
    ASSERT_TRUE(eventually([&] { return !mountedAt(point()); }));
}

TEST_F(OrdinaryUserTest, AVolumeIsMadeWrittenUnmountedAndReadAgain)
{
    const std::string first =
        drive({newSafe(), {"write", "Safe", "a.txt", "my words"}, {"unmount", "Safe"}});
    EXPECT_EQ(countLines(first, "created\tSafe"), 1) << first;
    EXPECT_EQ(countLines(first, "written\ta.txt"), 1) << first;
    EXPECT_EQ(countLines(first, "unmount\tSafe\tyes"), 1) << first;
    EXPECT_FALSE(mountedAt(point()));
    const std::string second =
        drive({answer(), {"mount", "Safe"}, {"read", "Safe", "a.txt"}, {"unmount", "Safe"}});
    EXPECT_EQ(countLines(second, "read\ta.txt\tmy words"), 1) << second;
    EXPECT_EQ(countLines(second, "unmount\tSafe\tyes"), 1) << second;
    EXPECT_EQ(second.find("alert"), std::string::npos) << second;
    EXPECT_TRUE(fs::is_empty(volumes()));
}

TEST_F(OrdinaryUserTest, VolumesMountAtStartAndGoWithTheSession)
{
    makeSafe();
    const std::string log = drive({answer(), {"automount", "1"}, {"read", "Safe", "a.txt"}});
    EXPECT_EQ(countLines(log, "automounted"), 1) << log;
    EXPECT_EQ(countLines(log, "read\ta.txt\tmy words"), 1) << log;
    EXPECT_TRUE(eventually([&] { return !mountedAt(point()); }));
}

TEST_F(OrdinaryUserTest, AnEjectFromOutsideReachesTheSession)
{
    makeSafe();
    const auto session = start({answer(),
                                {"mount", "Safe"},
                                {"await-unmounted", "Safe"},
                                answer(),
                                {"mount", "Safe"},
                                {"read", "Safe", "a.txt"}});
    ASSERT_TRUE(says(*session, "mount\tSafe\tyes")) << session->log();
    const RunResult ejected = asUser({"fusermount3", "-u", "--", point()});
    ASSERT_EQ(ejected.status, 0) << ejected.error;
    EXPECT_EQ(session->wait(std::chrono::seconds(60)), 0) << session->log();
    EXPECT_EQ(countLines(session->log(), "read\ta.txt\tmy words"), 1) << session->log();
}

TEST_F(OrdinaryUserTest, AnUnmountInUseIsRefusedWithTheProgramsName)
{
    makeSafe();
    const std::string opened = desk.home() + "/opened";
    const auto session = start({answer(),
                                {"mount", "Safe"},
                                {"await-file", opened},
                                {"unmount", "Safe"},
                                {"read", "Safe", "a.txt"},
                                {"await-file", opened + "-no-more"},
                                {"unmount", "Safe"}});
    ASSERT_TRUE(says(*session, "mount\tSafe\tyes")) << session->log();
    RunningProcess holder(
        {"sh", "-c", "exec 3<\"$0\"; : > \"$1\"; exec sleep 600", point() + "/a.txt", opened},
        {.user = user});
    ASSERT_TRUE(says(*session, "unmount\tSafe\tno")) << session->log();
    EXPECT_TRUE(says(*session, "read\ta.txt\tmy words")) << session->log();
    const std::string alert =
        "(" + std::to_string(holder.id()) + ") has " + point() + "/a.txt open.";
    EXPECT_THAT(session->log(), ::testing::HasSubstr("alert\t\"Safe\" could not be unmounted."));
    EXPECT_THAT(session->log(), ::testing::HasSubstr(alert));
    holder.signal(SIGKILL);
    ASSERT_TRUE(holder.wait(std::chrono::seconds(30)));
    writeFile(opened + "-no-more", "");
    EXPECT_TRUE(says(*session, "unmount\tSafe\tyes")) << session->log();
}

TEST_F(OrdinaryUserTest, AMountRootThatMayNotBeWrittenToIsNamed)
{
    makeSafe();
    fs::permissions(volumes(), fs::perms::owner_read | fs::perms::owner_exec);
    const std::string log = drive({answer(), {"mount", "Safe"}});
    EXPECT_EQ(countLines(log, "mount\tSafe\tno"), 1) << log;
    EXPECT_EQ(countLines(log, "alert\t\"Safe\" could not be mounted.\tThe folder " + volumes() +
                                  "/Safe can't be made: Permission denied. The disk is shown in "
                                  "it; check that you may write to " +
                                  volumes() + "."),
              1)
        << log;
    fs::permissions(volumes(), fs::perms::owner_all);
}

TEST_F(OrdinaryUserTest, AMountPointOfSomeoneElseIsNamed)
{
    if (!user)
        GTEST_SKIP() << "only root can make a folder of someone else's";
    makeSafe();
    fs::create_directories(volumes() + "/Safe");
    fs::permissions(volumes() + "/Safe", static_cast<fs::perms>(0755));
    const std::string log = drive({answer(), {"mount", "Safe"}});
    EXPECT_EQ(countLines(log, "mount\tSafe\tno"), 1) << log;
    EXPECT_EQ(countLines(log, "alert\t\"Safe\" could not be mounted.\tYou may not write to " +
                                  point() + ": Permission denied. Choose a folder of your own."),
              1)
        << log;
    EXPECT_TRUE(fs::exists(volumes() + "/Safe"));
}

TEST_F(OrdinaryUserTest, ADiskForEverybodyNeedsAnAdministratorsConsentWhichTheAlertNames)
{
    const VolumePtr volume = archived();
    volume->setAllowAll(true);
    NBVolumesController &controller = desk.makeController();
    controller.volumes().append(volume);
    controller.saveVolumes();
    handOver(desk.home());
    const std::string configuration =
        fs::exists("/etc/fuse.conf") ? "\n" + readFile("/etc/fuse.conf") : "";
    const bool isAllowed = configuration.find("\nuser_allow_other") != std::string::npos;

    const std::string log = drive({answer(), {"mount", "Safe"}});
    EXPECT_EQ(countLines(log, isAllowed ? "mount\tSafe\tyes" : "mount\tSafe\tno"), 1) << log;
    EXPECT_EQ(log.find("add the line `user_allow_other` to /etc/fuse.conf") != std::string::npos,
              !isAllowed)
        << log;
}

TEST_F(OrdinaryUserTest, AfterASuddenEndNothingIsWrittenIntoTheBareMountPoint)
{
    makeSafe();
    ASSERT_NO_FATAL_FAILURE(killSession());
    ASSERT_TRUE(fs::is_directory(point()));
    EXPECT_NE(writeIntoMountPoint().status, 0);
    EXPECT_TRUE(fs::is_empty(point()));
    const std::string log =
        drive({answer(), {"mount", "Safe"}, {"read", "Safe", "a.txt"}, {"unmount", "Safe"}});
    EXPECT_EQ(countLines(log, "read\ta.txt\tmy words"), 1) << log;
    EXPECT_TRUE(fs::is_empty(volumes()));
}

TEST_F(OrdinaryUserTest, WithoutThatLockPlainFilesWouldLandThereAndStopTheNextMount)
{
    makeSafe();
    ASSERT_NO_FATAL_FAILURE(killSession());
    fs::permissions(point(), fs::perms::owner_all);
    EXPECT_EQ(writeIntoMountPoint().status, 0);
    EXPECT_EQ(readFile(point() + "/secret.txt"), "plain words\n");
    const std::string log = drive({answer(), {"mount", "Safe"}});
    EXPECT_EQ(countLines(log, "mount\tSafe\tno"), 1) << log;
    EXPECT_THAT(log, ::testing::HasSubstr("isn't empty."));
}

} // namespace
} // namespace nimbrel::test
