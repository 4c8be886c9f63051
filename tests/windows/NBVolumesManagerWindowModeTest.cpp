// From one mode to the other.
#include "windows/ManagerDesk.h"

#include <fstream>

namespace nimbrel::test {
namespace {

const QStringList toSimple{
    QStringLiteral("Are you sure that you want to switch to simple mode?"),
    QStringLiteral("Warning: Only the first volume will remain. All additional volumes will be "
                   "unmounted and removed. They will NOT be deleted from your disk."),
    QStringLiteral("No"), QStringLiteral("Yes")};
const QStringList toAdvanced{
    QStringLiteral("Do you really want to enable Advanced Mode?"),
    QStringLiteral("Only enable Advanced Mode if you need to modify advanced options and if you "
                   "know what you do."),
    QStringLiteral("No"), QStringLiteral("Yes")};

class SwitchModeTest : public MountingManagerDesk
{
protected:
    void switchMode(std::optional<int> button = {})
    {
        if (button)
            answer(*button);
        window().switchModeToolbarItem->trigger();
    }
    [[nodiscard]] QVariant stored() { return SettingsFile().value(preferencesKey::advanced); }
};

TEST_F(SwitchModeTest, AdvancedModeIsAskedAboutAndStored)
{
    show(false);
    switchMode(1);
    EXPECT_EQ(told(), toAdvanced);
    EXPECT_FALSE(desk.application.isAdvanced);
    EXPECT_FALSE(stored().isValid());
    switchMode(0);
    EXPECT_EQ(told(), toAdvanced);
    EXPECT_TRUE(desk.application.isAdvanced);
    EXPECT_TRUE(stored().toBool());
    EXPECT_TRUE(manager->toolbarIsAdvancedMode());
    EXPECT_TRUE(window().tableScrollView->isVisible());
}

TEST_F(SwitchModeTest, WithNoneOrOneVolumeSimpleModeAsksNothing)
{
    show(true);
    switchMode();
    EXPECT_FALSE(desk.application.isAdvanced);
    desk.application.isAdvanced = true;
    const VolumePtr only = pretend(QStringLiteral("Only"), false, true);
    manager->updateToolbar();
    select(0);
    switchMode();
    EXPECT_FALSE(desk.application.isAdvanced);
    EXPECT_EQ(desk.alertTexts(), QStringList());
    EXPECT_EQ(volumes(), QList<VolumePtr>{only});
    EXPECT_TRUE(only->storePassphrase());
    EXPECT_FALSE(stored().toBool());
    EXPECT_EQ(table().selectedRow(), -1);
}

TEST_F(SwitchModeTest, NoLeavesEverythingAsItIs)
{
    pretend(QStringLiteral("First"));
    const VolumePtr second = pretend(QStringLiteral("Second"), false, true);
    show(true);
    select(1);
    switchMode(1);
    EXPECT_EQ(told(), toSimple);
    EXPECT_TRUE(desk.application.isAdvanced);
    EXPECT_EQ(volumes().size(), 2);
    EXPECT_TRUE(second->storePassphrase());
    EXPECT_EQ(table().selectedRow(), 1);
}

TEST_F(SwitchModeTest, OfThreeVolumesTheFirstStays)
{
    const VolumePtr first = pretend(QStringLiteral("First"), false, true);
    const VolumePtr second = mounted("Second");
    const VolumePtr third = pretend(QStringLiteral("Third"), false, true);
    show(true);
    select(2);
    switchMode(0);
    EXPECT_EQ(told(), toSimple);
    EXPECT_EQ(volumes(), QList<VolumePtr>{first});
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("First")});
    EXPECT_TRUE(first->storePassphrase());
    EXPECT_FALSE(second->storePassphrase());
    EXPECT_FALSE(third->storePassphrase());
    EXPECT_EQ(table().selectedRow(), -1);
    EXPECT_FALSE(manager->toolbarIsAdvancedMode());
    EXPECT_TRUE(second->isMounted()) << "nothing is waited for";
    EXPECT_TRUE(eventLoopUntil([&] { return !second->isMounted(); }));
}

TEST_F(SwitchModeTest, ADiskInUseIsSaidAndStaysThoughItsVolumeHasLeftTheList)
{
    pretend(QStringLiteral("First"));
    const std::string disk = coreText(mounted("Second")->mountPoint());
    std::fstream file(disk + "/open.txt", std::ios::out);
    file << "before" << std::flush;
    show(true);
    switchMode(0);
    EXPECT_EQ(told(), toSimple);
    EXPECT_TRUE(eventLoopUntil([&] { return !alerts().empty(); }));
    EXPECT_EQ(told().first(), QStringLiteral("\"Second\" could not be unmounted."));
    settle();
    file << " and after" << std::flush;
    EXPECT_TRUE(file.good());
    EXPECT_EQ(readFile(disk + "/open.txt"), "before and after");
    file.close();
    EXPECT_EQ(run({"fusermount3", "-u", disk}).status, 0);
    EXPECT_TRUE(eventLoopUntil([&] { return desk.desk.hasNoMounts(); }));
}

TEST_F(SwitchModeTest, AVolumeThatIsBeingMountedLeavesNoDiskBehind)
{
    pretend(QStringLiteral("First"));
    desk.controller().mountVolume(listed("Second"));
    show(true);
    switchMode(0);
    settle();
    EXPECT_TRUE(eventLoopUntil([&] { return desk.desk.hasNoMounts(); }));
    EXPECT_EQ(told(), toSimple);
}

TEST_F(SwitchModeTest, AVolumeThatUnmountsAlreadyKeepsTheHandlerOfThat)
{
    pretend(QStringLiteral("First"));
    const VolumePtr second = mounted("Second");
    show(true);
    std::vector<bool> heard;
    desk.controller().unmountVolume(second, [&heard](bool done) { heard.push_back(done); });
    switchMode(0);
    EXPECT_TRUE(eventLoopUntil([&] { return !heard.empty(); }));
    EXPECT_EQ(told(), toSimple);
}

TEST_F(SwitchModeTest, AListThatBecomesShorterDuringTheQuestionIsNotReadOutside)
{
    pretend(QStringLiteral("First"));
    pretend(QStringLiteral("Second"));
    show(true);
    desk.desk.alerts.whileShown = [this](const Alert &) { volumes().clear(); };
    switchMode(0);
    EXPECT_TRUE(volumes().isEmpty());
    EXPECT_FALSE(desk.application.isAdvanced);
}

} // namespace
} // namespace nimbrel::test
