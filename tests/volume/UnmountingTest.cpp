#include "app/Translation.h"
#include "volume/VolumeFixture.h"

#include <csignal>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

class UnmountingTest : public VolumeFixture
{
protected:
    // A program with that file open, told apart by its name.
    static std::unique_ptr<RunningProcess> holderOf(const std::string &file)
    {
        auto holder = std::make_unique<RunningProcess>(
            std::vector<std::string>{"sh", "-c", "exec 3<\"$0\"; exec sleep 600", file});
        const std::string name = "/proc/" + std::to_string(holder->id()) + "/comm";
        EXPECT_TRUE(eventually([&] { return readFile(name) == "sleep\n"; }));
        return holder;
    }
    static void eject(const VolumePtr &volume)
    {
        const RunResult result = run({"fusermount3", "-u", "--", coreText(volume->mountPoint())});
        ASSERT_EQ(result.status, 0) << result.error;
    }
    [[nodiscard]] std::string alias() const { return desk.home() + "/Desktop/Safe"; }
    [[nodiscard]] bool hasAlias() const { return fs::is_symlink(alias()); }

    std::vector<bool> results;
};

TEST_F(UnmountingTest, ADiskInUseStaysAndTheAlertNamesTheProgramAndItsFile)
{
    const SystemLogLines log;
    const VolumePtr volume = mounted();
    const std::string file = onDisk(volume, "report.txt");
    writeFile(file, "in use");
    const auto holder = holderOf(file);
    volume->unmount(into(results));
    ASSERT_TRUE(eventLoopUntil([&] { return alertCount() == 1; }));
    EXPECT_THAT(results, ::testing::ElementsAre(false));
    EXPECT_EQ(headline(), "\"Safe\" could not be unmounted.");
    const std::string real = canonicalPoint(volume) + "/report.txt";
    EXPECT_EQ(detail(), "sleep (" + std::to_string(holder->id()) + ") has " + real +
                            " open. Close that first, then try again.");
    EXPECT_EQ(log.count(QStringLiteral("Safe: not unmounted: Device or resource busy")), 1);
    EXPECT_TRUE(volume->isMounted());
    EXPECT_FALSE(volume->isBusy());
    writeFile(file, "still a disk");
    EXPECT_EQ(readFile(file), "still a disk");

    holder->signal(SIGKILL);
    ASSERT_TRUE(holder->wait(std::chrono::seconds(30)));
    EXPECT_TRUE(desk.unmount(volume));
    EXPECT_FALSE(mountedAt(real.substr(0, real.rfind('/'))));
}

TEST_F(UnmountingTest, InGermanTheAlertIsGermanAsAWhole)
{
    translation::install({QStringLiteral("de")});
    const VolumePtr volume = mounted();
    const std::string file = onDisk(volume, "report.txt");
    writeFile(file, "in use");
    const auto holder = holderOf(file);
    volume->unmount(into(results));
    ASSERT_TRUE(eventLoopUntil([&] { return alertCount() == 1; }));
    translation::install({});
    EXPECT_EQ(headline(), "„Safe“ konnte nicht ausgehängt werden.");
    EXPECT_THAT(detail(), ::testing::HasSubstr(") hat " + canonicalPoint(volume) +
                                               "/report.txt geöffnet. Bitte zuerst das"));
}

TEST_F(UnmountingTest, AFileNameWithPercentSignsIsShownAsItIs)
{
    const VolumePtr volume = mounted("100%@ %s");
    const std::string file = onDisk(volume, "5%d %% %@.txt");
    writeFile(file, "in use");
    const auto holder = holderOf(file);
    volume->unmount(into(results));
    ASSERT_TRUE(eventLoopUntil([&] { return alertCount() == 1; }));
    EXPECT_EQ(headline(), "\"100%@ %s\" could not be unmounted.");
    EXPECT_THAT(detail(), ::testing::HasSubstr("/100%@ %s/5%d %% %@.txt open. Close that first"));
}

TEST_F(UnmountingTest, AnEjectFromOutsideEndsTheMountedState)
{
    const VolumePtr volume = mounted();
    RecordedDelegate delegate;
    volume->setDelegate(&delegate);
    ASSERT_TRUE(eventLoopUntil([&] { return hasAlias(); }));
    settle();
    eject(volume);
    ASSERT_TRUE(eventLoopUntil([&] { return delegate.didUnmount == 1; }));
    EXPECT_FALSE(volume->isMounted());
    EXPECT_FALSE(volume->isBusy());
    EXPECT_FALSE(hasAlias());
    EXPECT_FALSE(fs::exists(coreText(volume->mountPoint())));
    EXPECT_EQ(alertCount(), 0U);
    EXPECT_TRUE(desk.mount(volume));
    volume->setDelegate(nullptr);
}

TEST_F(UnmountingTest, AnUnmountThatMeetsAnEjectFromOutsideIsAnsweredOnce)
{
    for (int i = 0; i < 5; ++i) {
        results.clear();
        const VolumePtr volume = mounted("Safe" + std::to_string(i));
        eject(volume);
        volume->unmount(into(results));
        ASSERT_TRUE(eventLoopUntil([&] { return !results.empty(); }));
        settle();
        EXPECT_THAT(results, ::testing::ElementsAre(true));
        EXPECT_FALSE(volume->isMounted());
        EXPECT_FALSE(volume->isBusy());
        EXPECT_EQ(alertCount(), 0U);
    }
}

TEST_F(UnmountingTest, AVolumeThatNeverMountedOnlyLogs)
{
    const SystemLogLines log;
    const VolumePtr volume = ready();
    volume->unmount(into(results));
    settle();
    EXPECT_THAT(results, ::testing::IsEmpty());
    EXPECT_FALSE(volume->isBusy());
    EXPECT_EQ(log.count(QStringLiteral("Safe: Unmounting...")), 1);
    EXPECT_EQ(log.lines().size(), 1);
    EXPECT_EQ(alertCount(), 0U);
}

TEST_F(UnmountingTest, AHandlerThatWasStoppedHearsOfTheNextUnmount)
{
    const VolumePtr volume = ready();
    volume->unmount(into(results));
    ASSERT_TRUE(desk.mount(volume));
    volume->unmount();
    ASSERT_TRUE(eventLoopUntil([&] { return !volume->isMounted(); }));
    EXPECT_THAT(results, ::testing::ElementsAre(true));
}

TEST_F(UnmountingTest, AnUnmountWhileTheVolumeIsBusyOnlyLogsBusy)
{
    const SystemLogLines log;
    const VolumePtr volume = ready();
    std::vector<bool> mounts;
    volume->mount(into(mounts));
    volume->unmount();
    ASSERT_TRUE(eventLoopUntil([&] { return !mounts.empty(); }));
    EXPECT_THAT(mounts, ::testing::ElementsAre(true));
    EXPECT_TRUE(volume->isMounted());
    volume->unmount(into(results));
    volume->unmount();
    volume->mount();
    ASSERT_TRUE(eventLoopUntil([&] { return !results.empty(); }));
    EXPECT_THAT(results, ::testing::ElementsAre(true));
    EXPECT_EQ(log.count(QStringLiteral("Safe: Busy...")), 3);
}

TEST_F(UnmountingTest, AnUnmountAfterTheLastOneAnswersThatThereWasNothing)
{
    const VolumePtr volume = mounted();
    ASSERT_TRUE(desk.unmount(volume));
    EXPECT_FALSE(desk.unmount(volume));
    EXPECT_FALSE(volume->isBusy());
    EXPECT_EQ(alertCount(), 0U);
    EXPECT_TRUE(desk.mount(volume));
}

TEST_F(UnmountingTest, APasswordThatIsNotToBeStoredGoesWithTheMount)
{
    const VolumePtr volume = ready();
    volume->setStorePassphrase(false);
    ASSERT_TRUE(desk.mount(volume));
    EXPECT_EQ(volume->passphrase(), rightPassword);
    ASSERT_TRUE(desk.unmount(volume));
    EXPECT_EQ(volume->passphrase(), "");
    desk.person.passwords = {std::string(rightPassword)};
    EXPECT_TRUE(desk.mount(volume));
    EXPECT_EQ(desk.person.timesAsked, 1);
}

TEST_F(UnmountingTest, APasswordThatIsToBeStoredStaysInTheRecord)
{
    const VolumePtr volume = mounted();
    ASSERT_TRUE(desk.unmount(volume));
    EXPECT_EQ(volume->passphrase(), rightPassword);
    EXPECT_TRUE(desk.mount(volume));
    EXPECT_EQ(desk.person.timesAsked, 0);
}

TEST_F(UnmountingTest, TheMountPointGoesWithTheDiskAndItsRootStays)
{
    const VolumePtr volume = mounted();
    ASSERT_TRUE(desk.unmount(volume));
    EXPECT_FALSE(fs::exists(coreText(volume->mountPoint())));
    EXPECT_TRUE(fs::is_empty(desk.home() + "/Volumes"));
}

TEST_F(UnmountingTest, RenamingAMountedVolumeLeavesNothingOfItsOldNameBehind)
{
    const VolumePtr volume = mounted();
    ASSERT_TRUE(eventLoopUntil([&] { return hasAlias(); }));
    settle();
    volume->setLabel(QStringLiteral("Vault"));
    ASSERT_TRUE(desk.unmount(volume));
    EXPECT_FALSE(hasAlias());
    EXPECT_TRUE(fs::is_empty(desk.home() + "/Volumes"));
    EXPECT_TRUE(desk.mount(volume));
    EXPECT_EQ(mountedAt(fs::canonical(desk.home() + "/Volumes/Vault")), "fuse.nimbrel");
}

TEST_F(UnmountingTest, AVolumeThatIsDroppedDuringItsUnmountIsUnmountedFirst)
{
    VolumePtr volume = mounted();
    volume->unmount(into(results));
    volume.reset();
    ASSERT_TRUE(eventLoopUntil([&] { return !results.empty(); }));
    EXPECT_THAT(results, ::testing::ElementsAre(true));
    EXPECT_TRUE(desk.hasNoMounts());
}

TEST_F(UnmountingTest, AHandlerMayMountAgain)
{
    const VolumePtr volume = mounted();
    volume->unmount([&](bool) { volume->mount(into(results)); });
    ASSERT_TRUE(eventLoopUntil([&] { return !results.empty(); }));
    EXPECT_THAT(results, ::testing::ElementsAre(true));
}

} // namespace
} // namespace nimbrel::test
