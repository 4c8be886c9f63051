#include "app/NBStatusItemController.h"

#include "application/ApplicationDesk.h"

#include <QMainWindow>
#include <QMenuBar>

namespace nimbrel::test {

namespace {

using ::testing::HasSubstr;

const QStringList fixedPart{QStringLiteral("Preferences…"), QStringLiteral("About Nimbrel"),
                            QStringLiteral("-"), QStringLiteral("Quit Nimbrel")};

class NBStatusItemControllerTest : public ::testing::Test, public ApplicationDesk
{
protected:
    NBStatusItemControllerTest()
    {
        desk.preferences.setValue(preferencesKey::advanced, true);
        start();
    }
    [[nodiscard]] VolumePtr add(const std::string &name, bool mounted)
    {
        const QString label = qtText(name);
        VolumePtr volume = folder(name + ".nmc", label);
        controller().volumes().append(volume);
        if (mounted)
            mount(volume);
        return volume;
    }
    void mount(const VolumePtr &volume)
    {
        controller().mountVolume(volume);
        EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
    }
    void unmount(const VolumePtr &volume)
    {
        controller().unmountVolume(volume);
        EXPECT_TRUE(eventLoopUntil([&] { return !volume->isMounted() && !volume->isBusy(); }));
    }
    [[nodiscard]] QStringList entries()
    {
        Q_EMIT statusItem().statusItemMenu().aboutToShow();
        return entriesOf(statusItem().statusItemMenu());
    }
    void choose(const QString &entry)
    {
        Q_EMIT statusItem().statusItemMenu().aboutToShow();
        for (QAction *action : statusItem().statusItemMenu().actions())
            if (action->text().remove(u'&') == entry)
                return action->trigger();
        ADD_FAILURE() << "no entry " << qUtf8Printable(entry);
    }
};

} // namespace

TEST_F(NBStatusItemControllerTest, WithoutVolumesTheMenuOffersANewOne)
{
    EXPECT_EQ(entries(),
              (QStringList{QStringLiteral("New Volume…"), QStringLiteral("-")} + fixedPart));
}

TEST_F(NBStatusItemControllerTest, AnUnmountedVolumeCanBeMounted)
{
    (void)add("Work", false);
    EXPECT_EQ(entries(),
              (QStringList{QStringLiteral("Mount Work"), QStringLiteral("-")} + fixedPart));
}

TEST_F(NBStatusItemControllerTest, AMountedVolumeCanBeOpenedAndUnmounted)
{
    (void)add("Work", true);
    EXPECT_EQ(entries(), (QStringList{QStringLiteral("Open Work"), QStringLiteral("Unmount Work"),
                                      QStringLiteral("-")} +
                          fixedPart));
}

TEST_F(NBStatusItemControllerTest, VolumesStandInTheirOrder)
{
    (void)add("B", false);
    (void)add("A", false);
    EXPECT_EQ(entries().mid(0, 4), (QStringList{QStringLiteral("Mount B"), QStringLiteral("-"),
                                                QStringLiteral("Mount A"), QStringLiteral("-")}));
}

TEST_F(NBStatusItemControllerTest, ThePictureTellsWhetherAnythingIsDecrypted)
{
    EXPECT_EQ(statusItem().image(), QStringLiteral("encrypted"));
    const VolumePtr one = add("One", true);
    (void)add("Two", false);
    EXPECT_EQ(statusItem().image(), QStringLiteral("decrypted"));
    EXPECT_EQ(statusItem().alternateImage(), QStringLiteral("decrypted_alt"));
    unmount(one);
    EXPECT_EQ(statusItem().image(), QStringLiteral("encrypted"));
    EXPECT_EQ(statusItem().alternateImage(), QStringLiteral("encrypted_alt"));
}

// Without that the icon says that all is encrypted while files lie open.
TEST_F(NBStatusItemControllerTest, ADiskThatRefusedToLeaveWithItsEntryStillCounts)
{
    const VolumePtr volume = add("Old", true);
    controller().volumes().clear();
    statusItem().updateIcon();
    EXPECT_EQ(statusItem().image(), QStringLiteral("decrypted"));
    EXPECT_EQ(statusItem().toolTip(), QStringLiteral("Nimbrel: mounted: Old"));
    unmount(volume);
    EXPECT_EQ(statusItem().image(), QStringLiteral("encrypted"));
}

TEST_F(NBStatusItemControllerTest, TheToolTipTellsTheStateInWords)
{
    EXPECT_EQ(statusItem().toolTip(), QStringLiteral("Nimbrel: no disk is mounted"));
    (void)add("Work", true);
    EXPECT_EQ(statusItem().toolTip(), QStringLiteral("Nimbrel: mounted: Work"));
}

// Kept: the welcome opens a folder past the controller.
TEST_F(NBStatusItemControllerTest, AMountThatIsNotAnnouncedLeavesThePicture)
{
    const VolumePtr volume = add("Work", false);
    ASSERT_TRUE(desk.mount(volume));
    EXPECT_EQ(statusItem().image(), QStringLiteral("encrypted"));
}

TEST_F(NBStatusItemControllerTest, TheMenuMountsOpensAndUnmounts)
{
    const VolumePtr volume = add("Work", false);
    choose(QStringLiteral("Mount Work"));
    EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
    choose(QStringLiteral("Open Work"));
    EXPECT_TRUE(eventLoopUntil([&] { return !desk.workspace.opened.isEmpty(); }));
    EXPECT_EQ(desk.workspace.opened.last(), volume->mountPoint());
    choose(QStringLiteral("Unmount Work"));
    EXPECT_TRUE(eventLoopUntil([&] { return !volume->isMounted(); }));
}

TEST_F(NBStatusItemControllerTest, AnAmpersandInALabelIsNoMnemonic)
{
    const VolumePtr volume = folder("Odd.nmc", QStringLiteral("R&D"));
    controller().volumes().append(volume);
    (void)entries();
    EXPECT_EQ(statusItem().statusItemMenu().actions().first()->text(),
              QStringLiteral("Mount R&&D"));
}

TEST_F(NBStatusItemControllerTest, APercentSignInALabelIsNoFormat)
{
    controller().volumes().append(folder("Odd.nmc", QStringLiteral("100%@")));
    EXPECT_EQ(entries().first(), QStringLiteral("Mount 100%@"));
}

// The menu that was built before may still be on the screen.
TEST_F(NBStatusItemControllerTest, AnEntryOfAVolumeThatHasLeftTheListDoesNothing)
{
    VolumePtr volume = add("Work", false);
    (void)entries();
    QAction *entry = statusItem().statusItemMenu().actions().first();
    controller().volumes().clear();
    volume.reset();
    entry->trigger();
    settle();
    EXPECT_TRUE(desk.hasNoMounts());
}

TEST_F(NBStatusItemControllerTest, ThePreferencesEntryShowsTheManagerWindow)
{
    choose(QStringLiteral("Preferences…"));
    ASSERT_NE(statusItem().vmWindowController().window(), nullptr);
    EXPECT_TRUE(statusItem().vmWindowController().window()->isVisible());
}

// No desktop of these tests has a host for icons.
TEST_F(NBStatusItemControllerTest, WithoutATrayTheWindowHasTheMenu)
{
    statusItem().showWithoutTray(false);
    EXPECT_TRUE(
        eventLoopUntil([this] { return statusItem().vmWindowController().window() != nullptr; }));
    auto *window = qobject_cast<QMainWindow *>(statusItem().vmWindowController().window());
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->menuBar()->isVisible());
    EXPECT_EQ(window->menuBar()->actions().first()->menu(), &statusItem().statusItemMenu());
}

TEST_F(NBStatusItemControllerTest, WithoutATrayAClosedWindowStaysInReach)
{
    (void)add("Work", false);
    statusItem().openPreferencesWindow();
    QWidget &window = *statusItem().vmWindowController().window();
    EXPECT_TRUE(window.close());
    EXPECT_TRUE(eventLoopUntil([&] { return window.isMinimized() && window.isVisible(); }));
}

TEST_F(NBStatusItemControllerTest, TheAboutEntryTellsTheVersion)
{
    choose(QStringLiteral("About Nimbrel"));
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto about = std::ranges::find_if(windows, [](const QWidget *window) {
        return window->objectName() == QLatin1String("aboutWindow");
    });
    ASSERT_NE(about, windows.end());
    EXPECT_TRUE((*about)->isVisible());
}

TEST_F(NBStatusItemControllerTest, QuitLeavesItToTheApplication)
{
    int times = 0;
    statusItem().setQuitHandler([&] { ++times; });
    choose(QStringLiteral("Quit Nimbrel"));
    EXPECT_EQ(times, 1);
}

} // namespace nimbrel::test
