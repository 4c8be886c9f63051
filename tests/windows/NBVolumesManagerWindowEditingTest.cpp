// Changing a volume's options, mounting it, and taking it off the list.
#include "assistants/views/AdvancedAssistantView.h"
#include "windows/ManagerDesk.h"

#include <QElapsedTimer>

#include <filesystem>
#include <fstream>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

AdvancedAssistantView &optionsIn(QWidget &window)
{
    return *window.findChild<AdvancedAssistantView *>();
}

class EditingTest : public MountingManagerDesk
{
protected:
    void edit(Steps steps)
    {
        Person person(std::move(steps));
        manager->editVolume();
        EXPECT_TRUE(person.steps.empty());
    }
    // What a volume that is busy makes of an action.
    QStringList busyAlert(const QString &label)
    {
        return {u'"' + label + u"\" is busy."_qs,
                QStringLiteral("It is being mounted or unmounted. Please wait until that has ended "
                               "and try again.")};
    }
};

TEST_F(EditingTest, TheStepShowsTheVolumesOptionsAndTakesTheChangedOnes)
{
    const VolumePtr volume = listed("Safe");
    volume->setCheckKey(false);
    volume->setAutomount(false);
    volume->setLocal(true);
    volume->setAllowAll(false);
    volume->setSpotlight(false);
    show(true);
    select(0);
    edit({[](QWidget &window) {
        EXPECT_EQ(window.windowTitle(), QStringLiteral("Edit Nimbrel Volume"));
        const AdvancedAssistantView &options = optionsIn(window);
        EXPECT_EQ(options.labelTextField->text(), QStringLiteral("Safe"));
        EXPECT_FALSE(options.checkKeyButton->isChecked());
        EXPECT_FALSE(options.automountButton->isChecked());
        EXPECT_TRUE(options.mountAsLocalDiskButton->isChecked());
        EXPECT_TRUE(options.mountAsLocalDiskButton->isEnabled());
        EXPECT_FALSE(options.mountForAllUsersButton->isChecked());
        EXPECT_FALSE(options.spotlightButton->isChecked());
        EXPECT_FALSE(options.configButton->isChecked());
        EXPECT_EQ(options.configTextField->text(), QString());
        options.labelTextField->setText(QStringLiteral("Renamed"));
        options.checkKeyButton->setChecked(true);
        options.automountButton->setChecked(true);
        options.spotlightButton->click(); // brings the two others along
        control<QAbstractButton>(window, "nextButton").click();
    }});
    EXPECT_EQ(volume->label(), QStringLiteral("Renamed"));
    EXPECT_TRUE(volume->checkKey() && volume->automount() && volume->isLocal());
    EXPECT_TRUE(volume->allowsAll() && volume->spotlight());
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Renamed")});
    settle();
    EXPECT_FALSE(volume->isMounted() || volume->isBusy()) << "an unmounted one isn't mounted";
    EXPECT_EQ(table().selectedRow(), 0);
    edit({[](QWidget &window) {
        EXPECT_FALSE(optionsIn(window).mountAsLocalDiskButton->isEnabled());
        EXPECT_FALSE(optionsIn(window).mountForAllUsersButton->isEnabled());
        window.close();
    }});
}

TEST_F(EditingTest, CancellingChangesNothing)
{
    const VolumePtr volume = listed("Safe");
    show(true);
    select(0);
    edit({type("labelTextField", QStringLiteral("Renamed")), previous});
    EXPECT_EQ(volume->label(), QStringLiteral("Safe"));
    EXPECT_TRUE(storedArchive().isEmpty());
}

TEST_F(EditingTest, AConfigurationThatIsNotThereIsSaidAndTheChangesStayUnsaved)
{
    const VolumePtr volume = listed("Safe");
    show(true);
    select(0);
    edit({type("labelTextField", QStringLiteral("Renamed")), check("configButton", true),
          type("configTextField", desk.path("nowhere.xml")), next});
    EXPECT_EQ(told().first(), QStringLiteral("This is not a valid Nimbrel Folder."));
    EXPECT_EQ(volume->label(), QStringLiteral("Renamed"));
    EXPECT_EQ(volume->configPath(), desk.path("nowhere.xml"));
    EXPECT_TRUE(storedArchive().isEmpty());
}

TEST_F(EditingTest, InSimpleModeNoAssistantRunsAndTheVolumeIsSaved)
{
    listed("Safe");
    show(true);
    select(0);
    desk.application.isAdvanced = false;
    edit({});
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Safe")});
}

TEST_F(EditingTest, AMountedVolumeIsMountedAgainAfterASecond)
{
    const VolumePtr volume = mounted("Safe");
    show(true);
    select(0);
    edit({type("labelTextField", QStringLiteral("Renamed")), next});
    ASSERT_TRUE(eventLoopUntil([&] { return !volume->isMounted(); }));
    QElapsedTimer pause;
    pause.start();
    ASSERT_TRUE(eventLoopUntil([&] { return volume->isBusy(); }));
    EXPECT_GE(pause.elapsed(), 900);
    ASSERT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
    EXPECT_TRUE(fs::exists(desk.desk.home() + "/Volumes/Renamed"));
    EXPECT_FALSE(fs::exists(desk.desk.home() + "/Volumes/Safe"));
}

TEST_F(EditingTest, AnUnmountThatIsRefusedEndsTheEditing)
{
    const VolumePtr volume = mounted("Safe");
    std::ofstream file(coreText(volume->mountPoint()) + "/open.txt");
    show(true);
    select(0);
    edit({next});
    EXPECT_TRUE(eventLoopUntil([&] { return !alerts().empty(); }));
    EXPECT_TRUE(volume->isMounted());
    EXPECT_TRUE(isEnabled("unmount"));
}

TEST_F(EditingTest, AVolumeThatHasLeftTheListIsNotMountedAgain)
{
    const VolumePtr volume = mounted("Safe");
    show(true);
    select(0);
    edit({next});
    ASSERT_TRUE(eventLoopUntil([&] { return !volume->isMounted(); }));
    volumes().clear();
    EXPECT_FALSE(eventLoopUntil([&] { return volume->isBusy(); }, std::chrono::milliseconds(1500)));
}

TEST_F(EditingTest, AVolumeThatLeavesTheListWhileItIsEditedStaysAsItIs)
{
    const VolumePtr volume = listed("Safe");
    show(true);
    select(0);
    edit({type("labelTextField", QStringLiteral("Renamed")), [this](QWidget &window) {
              volumes().clear();
              control<QAbstractButton>(window, "nextButton").click();
          }});
    EXPECT_EQ(volume->label(), QStringLiteral("Safe"));
    EXPECT_TRUE(storedArchive().isEmpty());
}

TEST_F(EditingTest, ABusyVolumeIsNeitherEditedNorRemoved)
{
    const VolumePtr volume = listed("Safe");
    show(true);
    select(0);
    desk.controller().mountVolume(volume);
    ASSERT_TRUE(volume->isBusy());
    edit({});
    EXPECT_EQ(told(), busyAlert(QStringLiteral("Safe")));
    manager->removeVolume();
    EXPECT_EQ(told(), busyAlert(QStringLiteral("Safe")));
    EXPECT_EQ(volumes().size(), 1);
    EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
}

TEST_F(EditingTest, AVolumeThatBecomesBusyWhileItIsEditedStaysAsItIs)
{
    const VolumePtr volume = listed("Safe");
    show(true);
    select(0);
    edit({type("labelTextField", QStringLiteral("Renamed")), [&](QWidget &window) {
              desk.controller().mountVolume(volume);
              control<QAbstractButton>(window, "nextButton").click();
          }});
    EXPECT_EQ(told(), busyAlert(QStringLiteral("Safe")));
    EXPECT_EQ(volume->label(), QStringLiteral("Safe"));
    EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
}

class RemovingTest : public EditingTest
{
};

namespace {

class RelabellingTest : public ManagerDesk
{
protected:
    RelabellingTest() : ManagerDesk({.bus = true, .keyring = true}) {}
    [[nodiscard]] std::optional<SecureBuffer> stored(const NBNimbrelVolume &volume)
    {
        return desk.desk.secrets.find(volume.keychainServiceName(), volume.path());
    }
};

} // namespace

// Without the guard the old item stays in the keyring, and the next start asks for the password.
TEST_F(RelabellingTest, TheStoredPasswordGoesAlongWithTheLabel)
{
    const VolumePtr volume = listed("Work");
    volume->setStorePassphrase(true);
    volume->doStorePassphrase();
    const QString before = volume->keychainServiceName();
    show(true);
    select(0);
    Person person({type("labelTextField", QStringLiteral("Office")), next});
    manager->editVolume();
    EXPECT_EQ(volume->label(), QStringLiteral("Office"));
    ASSERT_TRUE(stored(*volume));
    EXPECT_EQ(stored(*volume)->text(), volume->passphrase());
    EXPECT_FALSE(desk.desk.secrets.find(before, volume->path()));
}

TEST_F(RemovingTest, AnUnmountedVolumeGoesAtOnceAndItsFolderStays)
{
    const VolumePtr volume = listed("Safe");
    pretend(QStringLiteral("Other"));
    show(true);
    select(0);
    window().removeVolumeToolbarItem->trigger();
    EXPECT_EQ(labelsOf(volumes()), QStringList{QStringLiteral("Other")});
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Other")});
    EXPECT_FALSE(volume->storePassphrase());
    EXPECT_TRUE(fs::exists(coreText(volume->configPath())));
    EXPECT_EQ(window().tableView->model()->rowCount(), 1);
    EXPECT_EQ(table().selectedRow(), -1);
    EXPECT_EQ(desk.alertTexts(), QStringList());
}

TEST_F(RemovingTest, AMountedVolumeIsUnmountedFirst)
{
    const VolumePtr volume = mounted("Safe");
    show(true);
    select(0);
    manager->removeVolume();
    EXPECT_EQ(volumes().size(), 1);
    EXPECT_TRUE(eventLoopUntil([&] { return volumes().isEmpty(); }));
    EXPECT_FALSE(volume->isMounted());
    EXPECT_FALSE(storedArchive().isEmpty());
    EXPECT_EQ(window().tableView->model()->rowCount(), 0);
}

TEST_F(RemovingTest, AVolumeInUseStaysListed)
{
    const VolumePtr volume = mounted("Safe");
    std::ofstream file(coreText(volume->mountPoint()) + "/open.txt");
    show(true);
    select(0);
    manager->removeVolume();
    EXPECT_TRUE(eventLoopUntil([&] { return !alerts().empty(); }));
    EXPECT_EQ(volumes(), QList<VolumePtr>{volume});
    EXPECT_TRUE(volume->storePassphrase());
    EXPECT_TRUE(isEnabled("remove"));
}

TEST_F(RemovingTest, WithoutASelectionNothingIsRemoved)
{
    pretend(QStringLiteral("Safe"));
    show(true);
    manager->removeVolume();
    select(0);
    volumes().clear(); // the row is one of the past
    manager->removeVolume();
    EXPECT_TRUE(storedArchive().isEmpty());
}

class MountItemsTest : public EditingTest
{
};

TEST_F(MountItemsTest, MountAndUnmountUpdateTheToolbarWhenTheyHaveEnded)
{
    for (const bool isAdvanced : {false, true}) {
        const VolumePtr volume = listed(isAdvanced ? "Second" : "First");
        volumes() = {volume};
        show(isAdvanced);
        select(0);
        window().mountVolumeToolbarItem->trigger();
        EXPECT_TRUE(eventLoopUntil([&] { return isEnabled("unmount"); }));
        EXPECT_TRUE(volume->isMounted());
        EXPECT_FALSE(isEnabled("mount"));
        settle();
        window().unmountVolumeToolbarItem->trigger();
        EXPECT_TRUE(eventLoopUntil([&] { return isEnabled("mount"); }));
        EXPECT_FALSE(volume->isMounted());
    }
}

TEST_F(MountItemsTest, MountClickChangesTheState)
{
    const VolumePtr volume = listed("Safe");
    show(false);
    manager->mountClick(volume);
    EXPECT_TRUE(eventLoopUntil([&] { return isEnabled("unmount"); }));
    settle();
    manager->mountClick(volume);
    EXPECT_TRUE(eventLoopUntil([&] { return isEnabled("mount"); }));
}

TEST_F(MountItemsTest, WhatGoesOnKeepsItsHandler)
{
    const VolumePtr volume = listed("Safe");
    show(false);
    std::vector<bool> heard;
    const VolumeHandler handler = [&heard](bool done) { heard.push_back(done); };
    desk.controller().mountVolume(volume, handler);
    manager->mountVolume();
    EXPECT_TRUE(eventLoopUntil([&] { return heard.size() == 1; }));
    settle();
    desk.controller().unmountVolume(volume, handler);
    manager->unmountVolume();
    EXPECT_TRUE(eventLoopUntil([&] { return heard.size() == 2; }));
}

TEST_F(MountItemsTest, AMountedVolumeIsNotMountedOverItself)
{
    const VolumePtr volume = mounted("Safe");
    writeFile(coreText(volume->mountPoint()) + "/kept.txt", "kept");
    show(false);
    answer(1);
    manager->mountVolume();
    settle();
    EXPECT_EQ(desk.alertTexts(), QStringList());
    EXPECT_EQ(readFile(coreText(volume->mountPoint()) + "/kept.txt"), "kept");
}

} // namespace
} // namespace nimbrel::test
