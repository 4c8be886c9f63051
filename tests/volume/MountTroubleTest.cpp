// Mounts that fail, and what the user hears of them.
#include "fs/MountTable.h"
#include "volume/Driver.h"
#include "volume/VolumeFixture.h"

#include <algorithm>
#include <csignal>
#include <sstream>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

class MountTroubleTest : public VolumeFixture
{
protected:
    ~MountTroubleTest() override { detachAll(fs::weakly_canonical(root()).string() + "/Safe"); }

    [[nodiscard]] std::string root() const { return desk.home() + "/Volumes"; }

    // The mount fails: the handler hears it, the delegate doesn't, the log has the reason, and one
    // alert names it. The reason.
    std::string failure(const VolumePtr &volume, const std::string &label = "Safe")
    {
        const SystemLogLines log;
        RecordedDelegate delegate;
        volume->setDelegate(&delegate);
        const std::size_t before = alertCount();
        std::vector<bool> results;
        volume->mount(into(results));
        EXPECT_TRUE(eventLoopUntil([&] { return !results.empty(); }));
        EXPECT_THAT(results, ::testing::ElementsAre(false));
        EXPECT_FALSE(volume->isBusy());
        EXPECT_FALSE(volume->isMounted());
        EXPECT_EQ(delegate.didMount + delegate.didUnmount, 0);
        volume->setDelegate(nullptr);
        // A question about the mount point may stand before it.
        if (alertCount() == before)
            return "no alert";
        EXPECT_EQ(headline(alertCount() - 1), "\"" + label + "\" could not be mounted.");
        std::string reason = detail(alertCount() - 1);
        EXPECT_EQ(log.count(qtText(label + ": " + reason)), 1);
        return reason;
    }

    [[nodiscard]] static long mountsAt(const std::string &point)
    {
        return std::ranges::count(mountTable(), point, &Mount::point);
    }

    // The child that keeps the disks of the session.
    static pid_t keeperOf(pid_t session)
    {
        const std::string number = std::to_string(session);
        std::istringstream children(readFile("/proc/" + number + "/task/" + number + "/children"));
        pid_t child = -1;
        children >> child;
        return child;
    }
    // Mounts the volume in a session that dies together with its keeper.
    void leaveStaleMount();
};

void MountTroubleTest::leaveStaleMount()
{
    const auto session = startDriver(desk.desktop(), {{"answer", std::string(rightPassword)},
                                                      {"mount", "Safe"},
                                                      {"await-file", desk.home() + "/never"}});
    ASSERT_TRUE(eventually([&] { return countLines(session->log(), "mount\tSafe\tyes") == 1; }))
        << session->log();
    const pid_t keeper = keeperOf(session->id());
    ASSERT_GT(keeper, 0);
    ::kill(keeper, SIGKILL);
    session->signal(SIGKILL);
    ASSERT_TRUE(session->wait(std::chrono::seconds(30)));
}

TEST_F(MountTroubleTest, AMountPointWithFilesInItIsRefusedAndKeepsThem)
{
    const VolumePtr volume = ready();
    fs::create_directories(coreText(volume->mountPoint()));
    writeFile(onDisk(volume, "mine.txt"), "mine");
    EXPECT_EQ(failure(volume),
              fs::canonical(root()).string() +
                  "/Safe isn't empty. Choose an empty folder, or move its files away first.");
    EXPECT_EQ(alertCount(), 1U);
    EXPECT_EQ(readFile(onDisk(volume, "mine.txt")), "mine");
    fs::remove(onDisk(volume, "mine.txt"));
    EXPECT_TRUE(desk.mount(volume));
}

TEST_F(MountTroubleTest, AFileAtTheMountPointIsRefusedAndStays)
{
    const VolumePtr volume = ready();
    fs::create_directories(root());
    writeFile(coreText(volume->mountPoint()), "a file");
    EXPECT_THAT(failure(volume), ::testing::HasSubstr("isn't a folder. Choose an empty folder."));
    EXPECT_EQ(readFile(coreText(volume->mountPoint())), "a file");
}

TEST_F(MountTroubleTest, AMountRootThatIsAFileIsNamed)
{
    const VolumePtr volume = ready();
    writeFile(root(), "a file");
    const std::string reason = failure(volume);
    EXPECT_THAT(reason, ::testing::StartsWith("The folder " + root() + " can't be made: "));
    EXPECT_THAT(reason, ::testing::EndsWith("check that you may write to the folder above."));
    EXPECT_EQ(readFile(root()), "a file");
}

TEST_F(MountTroubleTest, ALivingDiskStaysAfterOkAndTheSecondMountFails)
{
    const VolumePtr first = mounted();
    writeFile(onDisk(first, "a.txt"), "of the first");
    const VolumePtr second = desk.fromArchive(desk.makeVolume("Other", rightPassword));
    second->setPassphrase(SecureBuffer::copyOf(rightPassword));
    second->setLabel(QStringLiteral("Safe"));
    desk.alerts.answers = {1};
    EXPECT_THAT(failure(second), ::testing::HasSubstr("already shows the encrypted folder"));
    EXPECT_EQ(alertCount(), 2U);
    EXPECT_EQ(mountsAt(canonicalPoint(first)), 1);
    EXPECT_EQ(readFile(onDisk(first, "a.txt")), "of the first");
    EXPECT_TRUE(desk.unmount(first));
}

TEST_F(MountTroubleTest, AnEncryptedFolderInsideItsMountPointIsRefused)
{
    const VolumePtr made = desk.makeVolume("Volumes/Safe/Inner", rightPassword);
    const VolumePtr volume = desk.fromArchive(made);
    volume->setPassphrase(SecureBuffer::copyOf(rightPassword));
    volume->setLabel(QStringLiteral("Safe"));
    const std::string before = readFile(coreText(made->configPath()));
    EXPECT_THAT(failure(volume), ::testing::HasSubstr("which the disk would hide"));
    EXPECT_EQ(readFile(coreText(made->configPath())), before);
}

TEST_F(MountTroubleTest, AMountPointInsideTheEncryptedFolderIsRefusedAndLeavesNothingThere)
{
    const VolumePtr volume = ready();
    desk.services.mountRoot = volume->path();
    EXPECT_THAT(failure(volume), ::testing::HasSubstr("lies inside the encrypted folder"));
    EXPECT_FALSE(fs::exists(coreText(volume->path()) + "/Safe"));
}

TEST_F(MountTroubleTest, ALabelThatLeadsOutOfTheMountRootIsRefused)
{
    for (const std::string label : {"../Elsewhere", "Folder/Disk", "..", ".", ""}) {
        desk.alerts.shown.clear();
        const VolumePtr volume = ready();
        volume->setLabel(qtText(label));
        EXPECT_EQ(failure(volume, label), "A disk can't be called \"" + label +
                                              "\". Give the volume a name without \"/\".");
        EXPECT_TRUE(desk.hasNoMounts()) << label;
        EXPECT_FALSE(fs::exists(desk.home() + "/Elsewhere"));
        EXPECT_FALSE(fs::exists(root()));
        fs::remove_all(coreText(volume->path()));
    }
}

TEST_F(MountTroubleTest, AFailedMountTakesBackTheFolderThatItMade)
{
    const VolumePtr volume = ready();
    const std::string away = desk.home() + "/away";
    // The encrypted folder goes while its key is being opened; its configuration lies elsewhere.
    const QString elsewhere = desk.path("configuration.xml");
    fs::copy(coreText(volume->configPath()), coreText(elsewhere));
    volume->setConfigPath(elsewhere);
    std::vector<bool> results;
    volume->mount(into(results));
    fs::rename(coreText(volume->path()), away);
    ASSERT_TRUE(eventLoopUntil([&] { return !results.empty(); }));
    EXPECT_THAT(results, ::testing::ElementsAre(false));
    EXPECT_THAT(detail(), ::testing::HasSubstr("doesn't exist. Check the path"));
    EXPECT_FALSE(fs::exists(coreText(volume->mountPoint())));
    fs::rename(away, coreText(volume->path()));
    EXPECT_TRUE(desk.mount(volume));
}

TEST_F(MountTroubleTest, AReasonWithPercentSignsIsShownAsItIs)
{
    const VolumePtr volume = ready("100%@ %s %%");
    fs::create_directories(onDisk(volume, "in the way"));
    EXPECT_THAT(failure(volume, "100%@ %s %%"),
                ::testing::HasSubstr("/Volumes/100%@ %s %% isn't empty."));
}

TEST_F(MountTroubleTest, TenFailuresOfOneCauseShowOneAlert)
{
    constexpr std::size_t count = 10;
    std::vector<VolumePtr> volumes;
    for (std::size_t i = 0; i < count; ++i)
        volumes.push_back(ready("Disk" + std::to_string(i)));
    writeFile(root(), "no folder");
    const SystemLogLines log;
    std::vector<bool> results;
    for (const VolumePtr &volume : volumes)
        volume->mount(into(results));
    ASSERT_TRUE(eventLoopUntil([&] { return results.size() == count; }));
    EXPECT_THAT(results, ::testing::Each(false));
    EXPECT_EQ(alertCount(), 1U);
    EXPECT_EQ(log.count(QStringLiteral("can't be made")), static_cast<qsizetype>(count));
}

TEST_F(MountTroubleTest, FailuresOfDifferentCausesShowAnAlertEach)
{
    std::vector<VolumePtr> volumes{ready("One"), ready("Two")};
    std::vector<bool> results;
    for (const VolumePtr &volume : volumes) {
        fs::create_directories(onDisk(volume, "in the way"));
        volume->mount(into(results));
    }
    ASSERT_TRUE(eventLoopUntil([&] { return results.size() == 2; }));
    EXPECT_TRUE(eventLoopUntil([&] { return alertCount() == 2; }));
    EXPECT_NE(detail(0), detail(1));
}

TEST_F(MountTroubleTest, ACauseIsToldAgainWhenItComesUpLater)
{
    const VolumePtr volume = ready();
    fs::create_directories(onDisk(volume, "in the way"));
    (void)failure(volume);
    const auto again = std::chrono::steady_clock::now() + std::chrono::milliseconds(1100);
    EXPECT_TRUE(eventLoopUntil([&] { return std::chrono::steady_clock::now() > again; }));
    (void)failure(volume);
    EXPECT_EQ(alertCount(), 2U);
}

TEST_F(MountTroubleTest, AHandlerMayMountAgainWhileTheFailureIsBeingTold)
{
    const VolumePtr volume = ready();
    fs::create_directories(onDisk(volume, "in the way"));
    std::vector<bool> results;
    volume->mount([&](bool) {
        fs::remove_all(onDisk(volume, "in the way"));
        volume->mount(into(results));
    });
    ASSERT_TRUE(eventLoopUntil([&] { return !results.empty(); }));
    EXPECT_THAT(results, ::testing::ElementsAre(true));
    EXPECT_EQ(alertCount(), 1U);
}

TEST_F(MountTroubleTest, OfTwoVolumesWithOneLabelOneMountsAndNothingIsStacked)
{
    const VolumePtr first = ready();
    const VolumePtr second = ready("Other");
    second->setLabel(QStringLiteral("Safe"));
    std::vector<bool> results;
    first->mount(into(results));
    second->mount(into(results));
    ASSERT_TRUE(eventLoopUntil([&] { return results.size() == 2; }));
    EXPECT_THAT(results, ::testing::UnorderedElementsAre(true, false));
    EXPECT_NE(first->isMounted(), second->isMounted());
    EXPECT_EQ(mountsAt(canonicalPoint(first)), 1);
    ASSERT_TRUE(eventLoopUntil([&] { return alertCount() == 1; }));
    EXPECT_EQ(headline(), "\"Safe\" could not be mounted.");
    EXPECT_TRUE(desk.unmount(first->isMounted() ? first : second));
    EXPECT_EQ(mountsAt(canonicalPoint(first)), 0);
}

TEST_F(MountTroubleTest, AStaleMountConfirmedWithOkIsClearedAwayAndMountedOn)
{
    const VolumePtr made = archived();
    NBVolumesController &controller = desk.makeController();
    controller.volumes() = {made};
    controller.saveVolumes();
    ASSERT_TRUE(desk.preferences.synchronize());
    ASSERT_NO_FATAL_FAILURE(leaveStaleMount());
    const std::string point = fs::canonical(root()).string() + "/Safe";
    ASSERT_EQ(mountsAt(point), 1);

    made->setPassphrase(SecureBuffer::copyOf(rightPassword));
    desk.alerts.answers = {1};
    EXPECT_TRUE(desk.mount(made));
    ASSERT_EQ(alertCount(), 1U);
    EXPECT_THAT(headline(), ::testing::EndsWith("/Safe is already in use."));
    EXPECT_EQ(mountsAt(point), 1);
    writeFile(onDisk(made, "a.txt"), "after all");
    EXPECT_TRUE(desk.unmount(made));
    EXPECT_EQ(mountsAt(point), 0);
}

} // namespace
} // namespace nimbrel::test
