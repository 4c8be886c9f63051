// Opening a folder that exists.
#include "assistants/views/AdvancedAssistantView.h"
#include "assistants/widgets/PathControl.h"
#include "volume/Background.h"
#include "windows/ManagerDesk.h"

#include <QComboBox>
#include <QLabel>
#include <QSemaphore>
#include <QThreadPool>

#include <filesystem>
#include <fstream>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

const QStringList invalidFolder{
    QStringLiteral("This is not a valid Nimbrel Folder."),
    QStringLiteral("If the folder is being synchronized right now, please wait until the whole "
                   "folder has been synchronized and try again.")};
const QStringList mayReplace{
    QStringLiteral("Another Nimbrel Folder is already opened in Nimbrel. It will be ejected before "
                   "this Nimbrel Folder will be opened."),
    QStringLiteral("Continue to open this encrypted folder?"), QStringLiteral("No"),
    QStringLiteral("Yes")};

class OpeningTest : public MountingManagerDesk
{
protected:
    explicit OpeningTest(PrivateDesktopOptions options = {.bus = false, .keyring = false})
        : MountingManagerDesk(options)
    {
    }

    // A folder on disk that no list knows.
    QString makeFolder(const std::string &name) { return desk.archived(name, password)->path(); }
    // As the system hands a folder over: a controller without a window, which goes at once.
    void openFromOutside(const QString &folder, Steps steps)
    {
        Person person(std::move(steps));
        desk.application.setOpenFile(folder);
        NBVolumesManagerWindowController(services, NBVolumesManagerWindowController::Window::None)
            .addVolume();
        EXPECT_TRUE(eventLoopUntil([&] { return person.steps.empty(); }));
        EXPECT_TRUE(desk.application.openFile().isNull());
    }
    // With the window that is on show.
    void open(const QString &folder, Steps steps)
    {
        Person person(std::move(steps));
        desk.application.setOpenFile(folder);
        manager->addVolume();
        EXPECT_TRUE(person.steps.empty());
    }
    [[nodiscard]] Steps entersPassword(const std::string &text)
    {
        return {type("passphraseTextField", qtText(text)), next};
    }
    [[nodiscard]] Steps entersPassword() { return entersPassword(password); }
    bool waitUntilOpened(qsizetype count = 1)
    {
        return eventLoopUntil([&] { return workspace().opened.size() == count; });
    }
};

TEST_F(OpeningTest, InAdvancedModeTheOptionsComeFirstAndTheVolumeJoinsTheList)
{
    pretend(QStringLiteral("Other"));
    show(true);
    const QString folder = makeFolder("Taxes");
    open(folder, Steps{[](QWidget &window) {
                     EXPECT_EQ(window.windowTitle(), QStringLiteral("Nimbrel"));
                     const auto &view = *window.findChild<AdvancedAssistantView *>();
                     EXPECT_EQ(view.labelTextField->text(), QStringLiteral("Taxes"));
                     EXPECT_FALSE(view.algorithmButton->isVisible());
                     view.labelTextField->setText(QStringLiteral("My taxes"));
                     view.automountButton->setChecked(false);
                     view.checkKeyButton->setChecked(false);
                     view.spotlightButton->setChecked(false);
                     control<QAbstractButton>(window, "nextButton").click();
                 }} + entersPassword());
    ASSERT_EQ(labelsOf(volumes()),
              (QStringList{QStringLiteral("Other"), QStringLiteral("My taxes")}));
    EXPECT_TRUE(storedArchive().isEmpty()) << "saved when the mount has ended";
    ASSERT_TRUE(waitUntilOpened());
    const VolumePtr volume = volumes().last();
    EXPECT_EQ(volume->path(), folder);
    EXPECT_FALSE(volume->automount());
    EXPECT_FALSE(volume->checkKey());
    EXPECT_FALSE(volume->spotlight());
    EXPECT_TRUE(volume->isMounted());
    EXPECT_EQ(workspace().opened, QStringList{desk.path("Volumes/My taxes")});
    EXPECT_EQ(storedLabels(), labelsOf(volumes()));
    EXPECT_EQ(window().tableView->model()->rowCount(), 2);
    EXPECT_EQ(desk.alertTexts(), QStringList());
}

TEST_F(OpeningTest, CancellingTheOptionsLeavesTheListAsItWas)
{
    show(true);
    const QString folder = makeFolder("Taxes");
    for (const Person::Step &end : {previous, closeWindow})
        open(folder, {end});
    EXPECT_TRUE(volumes().isEmpty());
    EXPECT_TRUE(storedArchive().isEmpty());
    EXPECT_TRUE(desk.application.openFile().isNull());
}

TEST_F(OpeningTest, AFolderWithoutConfigurationIsRefusedInBothModes)
{
    const QString folder = desk.desk.makeFolder("Plain.nmc");
    show(true);
    open(folder, {next});
    EXPECT_EQ(told(), invalidFolder);
    desk.application.isAdvanced = false;
    const VolumePtr last = pretend(QStringLiteral("Last"), false, true);
    open(folder, {});
    EXPECT_EQ(told(), invalidFolder);
    EXPECT_EQ(volumes(), QList<VolumePtr>{last});
    EXPECT_TRUE(last->storePassphrase());
}

TEST_F(OpeningTest, TheConfigurationMayLieElsewhere)
{
    show(true);
    const QString folder = makeFolder("Taxes");
    const QString elsewhere = desk.path("elsewhere.xml");
    fs::rename(coreText(folder) + "/.encfs6.xml", coreText(elsewhere));
    open(folder, Steps{check("configButton", true), type("configTextField", elsewhere), next} +
                     entersPassword());
    ASSERT_TRUE(waitUntilOpened());
    EXPECT_EQ(volumes().first()->configPath(), elsewhere);
}

TEST_F(OpeningTest, AFolderWithTheOldExtensionGetsTheNewOne)
{
    const QString folder = makeFolder("Old");
    fs::rename(coreText(folder), desk.desk.home() + "/Old.nm");
    openFromOutside(desk.path("Old.nm"), entersPassword());
    ASSERT_TRUE(waitUntilOpened());
    EXPECT_EQ(volumes().first()->path(), folder);
}

TEST_F(OpeningTest, AListedFolderIsOpenedAndNotListedAgain)
{
    const VolumePtr volume = listed("Safe");
    for (const bool isAdvanced : {true, false}) {
        show(isAdvanced);
        open(volume->path(), {});
        ASSERT_TRUE(waitUntilOpened(isAdvanced ? 1 : 2));
        EXPECT_EQ(volumes(), QList<VolumePtr>{volume});
        EXPECT_TRUE(desk.application.openFile().isNull());
    }
    EXPECT_TRUE(volume->isMounted());
}

TEST_F(OpeningTest, WithoutAWindowTheMountIsSavedAndShownThoughTheControllerHasGone)
{
    const QString folder = makeFolder("Taxes");
    openFromOutside(folder, entersPassword());
    ASSERT_TRUE(waitUntilOpened());
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Nimbrel")});
    EXPECT_EQ(workspace().opened, QStringList{desk.path("Volumes/Nimbrel")});
}

TEST_F(OpeningTest, AMountThatFailsStillSavesTheListWithTheVolume)
{
    fs::create_directories(desk.desk.home() + "/Volumes");
    writeFile(desk.desk.home() + "/Volumes/Nimbrel", "in the way");
    openFromOutside(makeFolder("Taxes"), entersPassword());
    EXPECT_TRUE(eventLoopUntil([&] { return !alerts().empty(); }));
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Nimbrel")});
    EXPECT_FALSE(volumes().first()->isMounted());
    EXPECT_EQ(workspace().opened, QStringList());
}

TEST_F(OpeningTest, APasswordThatIsNotGivenLeavesTheVolumeListedButUnsaved)
{
    show(false);
    open(makeFolder("Taxes"), {previous});
    settle();
    EXPECT_EQ(volumes().size(), 1);
    EXPECT_TRUE(storedArchive().isEmpty());
}

TEST_F(OpeningTest, InSimpleModeAMountedFolderIsReplacedFromOutsideOnYesAlone)
{
    const VolumePtr old = mounted("Old");
    const QString folder = makeFolder("New");
    show(false);
    answer(1);
    open(folder, {});
    EXPECT_EQ(told(), mayReplace);
    EXPECT_EQ(volumes(), QList<VolumePtr>{old});
    EXPECT_TRUE(old->isMounted() && !old->isBusy());
    answer(0);
    Person person(entersPassword());
    desk.application.setOpenFile(folder);
    manager->addVolume();
    EXPECT_EQ(told(), mayReplace);
    ASSERT_TRUE(waitUntilOpened());
    EXPECT_EQ(volumes().size(), 1);
    EXPECT_EQ(volumes().first()->path(), folder);
    EXPECT_TRUE(eventLoopUntil([&] { return !old->isMounted(); }));
    EXPECT_FALSE(old->storePassphrase());
    EXPECT_EQ(window().customPathControl->path(), folder);
    EXPECT_EQ(desk.alertTexts(), QStringList());
}

TEST_F(OpeningTest, InSimpleModeAnUnmountedFolderIsReplacedWithoutAQuestion)
{
    const VolumePtr old = pretend(QStringLiteral("Old"), false, true);
    openFromOutside(makeFolder("New"), entersPassword());
    ASSERT_TRUE(waitUntilOpened());
    EXPECT_EQ(labelsOf(volumes()), QStringList{QStringLiteral("Nimbrel")});
    EXPECT_FALSE(old->storePassphrase());
}

// Both disks are called "Nimbrel": the new one would meet the old one, which still leaves.
TEST_F(OpeningTest, InSimpleModeTheNewDiskWaitsForTheOldOnesEnd)
{
    const VolumePtr old = listed("Old");
    old->setLabel(QStringLiteral("Nimbrel"));
    desk.controller().mountVolume(old);
    ASSERT_TRUE(eventLoopUntil([&] { return old->isMounted(); }));
    settle();
    QThreadPool &pool = backgroundPool();
    QSemaphore mayGoOn;
    for (int i = 0; i < pool.maxThreadCount(); ++i) // nobody is left for the unmount
        pool.start([&mayGoOn] { mayGoOn.acquire(); });
    answer(0);
    Person person(entersPassword());
    desk.application.setOpenFile(makeFolder("New"));
    manager->addVolume();
    EXPECT_TRUE(old->isMounted());
    EXPECT_EQ(person.steps.size(), 2U) << "not yet asked";
    mayGoOn.release(pool.maxThreadCount());
    ASSERT_TRUE(waitUntilOpened());
    EXPECT_FALSE(old->isMounted());
    EXPECT_EQ(told(), mayReplace) << "and nothing of a mount point in use";
}

// Without the guard the record of the disk that is on its way is dropped, and its password with it.
TEST_F(OpeningTest, InSimpleModeAVolumeThatIsBeingMountedIsNotReplaced)
{
    const VolumePtr old = listed("Old");
    desk.controller().mountVolume(old);
    ASSERT_TRUE(old->isBusy());
    desk.application.setOpenFile(makeFolder("New"));
    manager->addVolume();
    manager->newVolume();
    EXPECT_EQ(desk.alertTexts(), (QStringList{QStringLiteral("\"Old\" is busy."),
                                              QStringLiteral("\"Old\" is busy.")}));
    EXPECT_EQ(volumes(), QList<VolumePtr>{old});
    EXPECT_FALSE(old->passphrase().empty());
    EXPECT_TRUE(eventLoopUntil([&] { return old->isMounted(); }));
}

TEST_F(OpeningTest, InSimpleModeAnOldDiskInUseStaysAsItIs)
{
    VolumePtr old = listed("Old");
    old->setLabel(QStringLiteral("Nimbrel"));
    desk.controller().mountVolume(old);
    ASSERT_TRUE(eventLoopUntil([&] { return old->isMounted(); }));
    settle();
    const std::string disk = coreText(old->mountPoint());
    old.reset();
    std::fstream file(disk + "/open.txt", std::ios::out);
    file << "before" << std::flush;
    answer(0); // replace it
    desk.application.setOpenFile(makeFolder("New"));
    manager->addVolume();
    EXPECT_TRUE(eventLoopUntil([&] { return alerts().size() == 2; }));
    EXPECT_EQ(desk.alertTexts().last(), QStringLiteral("\"Nimbrel\" could not be unmounted."));
    settle();
    file << " and after" << std::flush;
    EXPECT_TRUE(file.good());
    EXPECT_EQ(readFile(disk + "/open.txt"), "before and after");
    file.close();
    EXPECT_EQ(run({"fusermount3", "-u", disk}).status, 0);
    EXPECT_TRUE(eventLoopUntil([&] { return desk.desk.hasNoMounts(); }));
}

TEST_F(OpeningTest, WithoutAFileTheSheetComesDownAndOpenFileIsNotTouched)
{
    show(false);
    window().addVolumeToolbarItem->trigger();
    QWidget *sheet = nullptr;
    EXPECT_TRUE(eventLoopUntil([&] { return (sheet = QApplication::activeModalWidget()); },
                               std::chrono::seconds(2)));
    if (sheet != nullptr) {
        EXPECT_EQ(sheet->parentWidget(), &window());
        EXPECT_EQ(sheet->windowModality(), Qt::WindowModal);
        sheet->close();
    }
    EXPECT_TRUE(volumes().isEmpty());
}

class OpeningWithKeyringTest : public OpeningTest
{
protected:
    OpeningWithKeyringTest() : OpeningTest({.bus = true, .keyring = true}) {}

    [[nodiscard]] bool isStored(const VolumePtr &volume)
    {
        return desk.desk.secrets.find(volume->keychainServiceName(), volume->path()).has_value();
    }
};

TEST_F(OpeningWithKeyringTest, TheReplacedVolumesStoredPasswordIsForgotten)
{
    const VolumePtr old = mounted("Old");
    ASSERT_TRUE(isStored(old));
    answer(0);
    Person person(entersPassword());
    desk.application.setOpenFile(makeFolder("New"));
    manager->addVolume();
    EXPECT_FALSE(isStored(old)) << "before the new one has mounted";
    ASSERT_TRUE(waitUntilOpened());
}

TEST_F(OpeningWithKeyringTest, RemovingAVolumeForgetsItsPassword)
{
    const VolumePtr volume = listed("Safe");
    volume->doStorePassphrase();
    ASSERT_TRUE(isStored(volume));
    show(true);
    select(0);
    manager->removeVolume();
    EXPECT_FALSE(isStored(volume));
}

} // namespace
} // namespace nimbrel::test
