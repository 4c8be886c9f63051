// When the manager window may close.
#include "windows/ManagerDesk.h"

#include <filesystem>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

class NBVolumesManagerWindowClosingTest : public MountingManagerDesk
{
protected:
    // Whether it closed.
    bool close()
    {
        window().close();
        return !window().isVisible();
    }
};

const QStringList noFolder{
    QStringLiteral("You did not choose any encrypted folder."),
    QStringLiteral("Nimbrel will not create the Nimbrel volume and you will not be able to encrypt "
                   "or decrypt files. Please create or open an encrypted folder in order to secure "
                   "your private files with Nimbrel.\n\nDo you really want to close this window?"),
    QStringLiteral("No"), QStringLiteral("Yes")};
const QStringList notMounted{
    QStringLiteral("The Nimbrel Volume has not been mounted."),
    QStringLiteral("You can mount the volume always using the Nimbrel icon in the menu bar.")};

TEST_F(NBVolumesManagerWindowClosingTest, WithoutVolumesItClosesOnYesAloneAndGoesOnObserving)
{
    for (const bool isAdvanced : {true, false}) {
        show(isAdvanced);
        answer(1);
        EXPECT_FALSE(close());
        EXPECT_EQ(told(), noFolder);
        answer(0);
        EXPECT_TRUE(close());
        EXPECT_EQ(told(), noFolder);
    }
    manager->showWindow();
    const VolumePtr volume = pretend(QStringLiteral("Safe"));
    Q_EMIT desk.controller().NBVolumesControllerDidUnmountVolumeNotification(*volume);
    QCoreApplication::processEvents();
    EXPECT_TRUE(isEnabled("mount")) << "it still hears of volumes";
}

TEST_F(NBVolumesManagerWindowClosingTest, InAdvancedModeNothingIsCheckedOrMounted)
{
    const VolumePtr volume = pretend(QStringLiteral("Gone"));
    show(true);
    EXPECT_TRUE(close());
    EXPECT_EQ(desk.alertTexts(), QStringList());
    EXPECT_FALSE(volume->isBusy());
}

TEST_F(NBVolumesManagerWindowClosingTest, InSimpleModeAMissingFolderKeepsItOpen)
{
    pretend(QStringLiteral("Gone"));
    show(false);
    EXPECT_FALSE(close());
    EXPECT_EQ(told(),
              (QStringList{QStringLiteral("The encrypted folder does not exist."), u""_qs}));
}

TEST_F(NBVolumesManagerWindowClosingTest, InSimpleModeAMissingConfigurationKeepsItOpen)
{
    const VolumePtr volume = pretend(QStringLiteral("Empty"));
    desk.desk.makeFolder("Empty.nmc");
    volume->setIsMounted(true); // that doesn't matter
    show(false);
    EXPECT_FALSE(close());
    EXPECT_EQ(told(),
              (QStringList{QStringLiteral("The configuration file does not exist."), u""_qs}));
}

TEST_F(NBVolumesManagerWindowClosingTest, InSimpleModeItMountsAndClosesBeforeTheMountHasEnded)
{
    const VolumePtr volume = listed("Safe");
    show(false);
    EXPECT_TRUE(close());
    EXPECT_EQ(told(), notMounted);
    EXPECT_TRUE(volume->isBusy());
    EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
    EXPECT_EQ(desk.alertTexts(), QStringList());
}

TEST_F(NBVolumesManagerWindowClosingTest, InSimpleModeAMountedVolumeIsNothingToSay)
{
    mounted("Safe");
    show(false);
    EXPECT_TRUE(close());
    EXPECT_EQ(desk.alertTexts(), QStringList());
}

TEST_F(NBVolumesManagerWindowClosingTest, AMountThatGoesOnKeepsItsHandler)
{
    const VolumePtr volume = listed("Safe");
    show(false);
    std::vector<bool> heard;
    desk.controller().mountVolume(volume, [&heard](bool mounted) { heard.push_back(mounted); });
    EXPECT_TRUE(close());
    EXPECT_EQ(told(), notMounted);
    EXPECT_TRUE(eventLoopUntil([&] { return !heard.empty(); }));
    EXPECT_TRUE(volume->isMounted());
}

} // namespace
} // namespace nimbrel::test
