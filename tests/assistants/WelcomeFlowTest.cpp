// A new user's road: from the first window to a mounted disk.
#include "assistants/flows/WelcomeFlow.h"

#include "assistant/TEInstallStepView.h"
#include "assistants/AssistantsDesk.h"
#include "assistants/views/WelcomeMatrix.h"
#include "assistants/widgets/PopUpButton.h"
#include "config/NBNimbrelFSPreferences.h"
#include "volume/StoredList.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTranslator>

#include <filesystem>
#include <fstream>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

const QString password = QStringLiteral("a new Paßwort");

// Another language: every text in capitals.
class Capitals final : public QTranslator
{
public:
    Capitals() { QCoreApplication::installTranslator(this); }
    [[nodiscard]] bool isEmpty() const override { return false; }
    QString translate(const char *, const char *text, const char *, int) const override
    {
        return QString::fromUtf8(text).toUpper();
    }
};

class WelcomeFlowTest : public ::testing::Test
{
protected:
    WelcomeFlowTest() { desk.desk.makeFolder("Documents"); }

    // The flow goes at once: what comes after a mount does without it.
    void welcome()
    {
        WelcomeFlow(desk.application, desk.services, [this](QWidget &, auto handler) {
            handler(picked);
        }).showWelcomeAssistant();
    }
    void welcome(Steps steps)
    {
        Person person(std::move(steps));
        welcome();
        EXPECT_TRUE(person.steps.empty());
    }
    static Steps existing()
    {
        return {
            [](QWidget &window) { control<WelcomeMatrix>(window, "welcomeMatrix").selectRow(1); },
            press("chooseButton")};
    }
    VolumePtr only()
    {
        EXPECT_EQ(desk.controller().volumes().size(), 1);
        return desk.controller().lastVolume();
    }
    bool hasNothing()
    {
        return desk.controller().volumes().isEmpty() && !fs::exists(preferencesPath(desk.desk)) &&
               fs::is_empty(coreText(desk.path("Documents")));
    }

    AssistantsDesk desk;
    Watchdog watchdog;
    QString picked;
};

const QString notMade = QStringLiteral("The new Nimbrel Folder has not been created!");

TEST_F(WelcomeFlowTest, TheWindowListsTheThreeStepsOfANewFolder)
{
    welcome({[](QWidget &window) {
        EXPECT_EQ(window.windowTitle(), QStringLiteral("Nimbrel"));
        EXPECT_EQ(control<TEInstallStepView>(window, "installStepView").steps(),
                  (QStringList{QStringLiteral("Welcome to Nimbrel"),
                               QStringLiteral("Create a new Nimbrel Folder"),
                               QStringLiteral("Create a password")}));
        window.close();
    }});
}

TEST_F(WelcomeFlowTest, ClosingTheWindowAtAnyStepCreatesAndListsNothing)
{
    const Steps toLocation{next};
    const Steps toPassword = toLocation + located(QStringLiteral("Taxes"));
    for (const Steps &way : {Steps{}, toLocation, toPassword, existing()}) {
        welcome(way + Steps{closeWindow});
        EXPECT_TRUE(hasNothing());
    }
    EXPECT_EQ(desk.alertTexts(), QStringList());
}

TEST_F(WelcomeFlowTest, FolderThatCannotBeMadeIsSaidInTheseWordsInEveryLanguage)
{
    const Capitals capitals;
    fs::remove(coreText(desk.path("Documents")));
    writeFile(coreText(desk.path("Documents")), "no folder");
    welcome(Steps{next} + located(QStringLiteral("Taxes")) + newPassword(password));
    ASSERT_FALSE(desk.alertTexts().isEmpty());
    EXPECT_EQ(desk.alertTexts().last(), notMade);
    EXPECT_EQ(desk.alertTexts().first(), QStringLiteral("COULD NOT CREATE THE ENCRYPTED FOLDER."));
    EXPECT_TRUE(desk.controller().volumes().isEmpty());
}

TEST_F(WelcomeFlowTest, FolderThatLosesItsConfigurationBeforeItIsOpenedIsSaidAndNotListed)
{
    picked = desk.desk.makeFolder("Real.nmc", {".encfs6.xml"});
    welcome(existing() + Steps{[this](QWidget &window) {
                control<QPushButton>(window, "nextButton").click();
                fs::remove(coreText(picked) + "/.encfs6.xml");
            }});
    ASSERT_EQ(desk.desk.alerts.shown.size(), 1U);
    EXPECT_EQ(desk.desk.alerts.shown[0].messageText,
              QStringLiteral("This is not a valid Nimbrel Folder."));
    EXPECT_EQ(desk.desk.alerts.shown[0].informativeText,
              QStringLiteral("If the folder is being synchronized right now, please wait until "
                             "the whole folder has been synchronized and try again."));
    EXPECT_TRUE(desk.controller().volumes().isEmpty());
}

class WelcomeToDiskTest : public WelcomeFlowTest
{
protected:
    void SetUp() override { NIMBREL_NEED_MOUNTS(); }

    // Goes the whole way to a new folder; `atSuccess` is done at the closing page.
    VolumePtr make(Steps atSuccess)
    {
        Person person(Steps{next} + located(QStringLiteral("Taxes")) + newPassword(password) +
                      atSuccess);
        welcome();
        const VolumePtr volume = only();
        EXPECT_TRUE(eventLoopUntil([&] { return person.steps.empty() && !volume->isBusy(); }));
        return volume;
    }
    // A real folder, for row 1; and the answer to the mount's question.
    void pickReal(const std::string &name = "Real")
    {
        picked = desk.desk.makeVolume(name, coreText(password))->path();
    }
    Steps openIt(bool show) const
    {
        return existing() + Steps{check("openVolumeButton", show), next,
                                  type("passphraseTextField", password), next};
    }
    VolumePtr open(bool show)
    {
        welcome(openIt(show));
        VolumePtr volume = only();
        EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
        settle();
        return volume;
    }
};

TEST_F(WelcomeToDiskTest, NewFolderIsWrittenListedMountedAndThenCelebrated)
{
    QSignalSpy mounted(&desk.controller(),
                       &NBVolumesController::NBVolumesControllerDidMountVolumeNotification);
    const VolumePtr volume = make({[&](QWidget &window) {
                                       EXPECT_TRUE(desk.controller().lastVolume()->isMounted())
                                           << "only then";
                                       EXPECT_EQ(window.windowTitle(), QStringLiteral("Nimbrel"));
                                       EXPECT_EQ(control<QLabel>(window, "stepTitle").text(),
                                                 QStringLiteral("Congratulations!"));
                                   },
                                   check("openVolumeButton", true), next});
    EXPECT_EQ(volume->path(), desk.path("Documents/Taxes.nmc"));
    EXPECT_EQ(volume->configPath(), desk.path("Documents/Taxes.nmc/.encfs6.xml"));
    EXPECT_EQ(volume->label(), QStringLiteral("Nimbrel"));
    EXPECT_TRUE(volume->automount());
    EXPECT_TRUE(volume->storePassphrase());
    EXPECT_TRUE(volume->encodeFilenames());
    EXPECT_EQ(volume->keySize(), 256);
    EXPECT_EQ(volume->blockSize(), 4096);
    EXPECT_EQ(volume->passphrase(), coreText(password));
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Nimbrel")});
    EXPECT_EQ(mounted.count(), 1);
    EXPECT_EQ(desk.desk.workspace.selected,
              QStringList{volume->mountPoint() + QStringLiteral("/Getting Started.pdf")});
    EXPECT_EQ(desk.desk.workspace.roots, QStringList{volume->mountPoint()});
    EXPECT_EQ(desk.alertTexts(), QStringList());
}

TEST_F(WelcomeToDiskTest, WhatIsWrittenToTheNewDiskIsThereAtTheNextMountWithThePassword)
{
    const VolumePtr volume = make({closeWindow});
    const std::string file = coreText(volume->mountPoint()) + "/kept.txt";
    writeFile(file, "kept words");
    ASSERT_TRUE(desk.desk.unmount(volume));
    const VolumePtr again = desk.desk.fromArchive(volume);
    again->setPassphrase(SecureBuffer::copyOf(coreText(password)));
    ASSERT_TRUE(desk.desk.mount(again));
    EXPECT_EQ(readFile(file), "kept words");
    EXPECT_TRUE(desk.desk.unmount(again));
}

TEST_F(WelcomeToDiskTest, TheManualsAreOnTheNewDisk)
{
    fs::create_directories(desk.desk.home() + "/resources/en");
    writeFile(desk.desk.home() + "/resources/en/Getting Started.pdf", "first pages");
    const VolumePtr volume = make({closeWindow});
    EXPECT_EQ(readFile(coreText(volume->mountPoint()) + "/Getting Started.pdf"), "first pages");
}

TEST_F(WelcomeToDiskTest, NewDiskIsNotShownWithTheBoxOff)
{
    EXPECT_TRUE(make({check("openVolumeButton", false), next})->isMounted());
    EXPECT_TRUE(desk.desk.workspace.selected.isEmpty());
    EXPECT_TRUE(desk.desk.workspace.opened.isEmpty());
}

TEST_F(WelcomeToDiskTest, NewDiskIsNotShownWhenTheClosingPageIsClosedByHand)
{
    EXPECT_TRUE(make({check("openVolumeButton", true), closeWindow})->isMounted());
    EXPECT_TRUE(desk.desk.workspace.selected.isEmpty());
}

TEST_F(WelcomeToDiskTest, NewFolderWhoseMountFailsStaysListedWithoutAClosingPage)
{
    fs::create_directories(desk.desk.home() + "/Volumes");
    writeFile(desk.desk.home() + "/Volumes/Nimbrel", "in the way");
    const VolumePtr volume = make({});
    EXPECT_TRUE(eventLoopUntil([&] { return !desk.desk.alerts.shown.empty(); }));
    EXPECT_EQ(desk.alertTexts(), QStringList{QStringLiteral("\"Nimbrel\" could not be mounted.")});
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_TRUE(fs::exists(coreText(volume->configPath())));
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Nimbrel")});
}

TEST_F(WelcomeToDiskTest, ExistingFolderIsListedSavedMountedAndShown)
{
    pickReal();
    const VolumePtr volume = open(true);
    EXPECT_EQ(volume->path(), picked);
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Nimbrel")});
    EXPECT_EQ(desk.desk.workspace.opened, QStringList{volume->mountPoint()});
    EXPECT_EQ(desk.alertTexts(), QStringList());
}

TEST_F(WelcomeToDiskTest, ExistingFolderIsMountedPastTheController)
{
    pickReal();
    QSignalSpy mounted(&desk.controller(),
                       &NBVolumesController::NBVolumesControllerDidMountVolumeNotification);
    const VolumePtr volume = open(false);
    EXPECT_EQ(mounted.count(), 0);
    EXPECT_EQ(volume->delegate(), nullptr);
    EXPECT_TRUE(desk.desk.workspace.opened.isEmpty());
}

TEST_F(WelcomeToDiskTest, ExistingFolderTakesTheFirstPlaceOfTheList)
{
    pickReal();
    const VolumePtr before = desk.archived("Before", "other password");
    desk.controller().volumes().append(before);
    const VolumePtr volume = open(false);
    EXPECT_NE(volume, before);
    EXPECT_TRUE(fs::exists(coreText(before->configPath())));
}

TEST_F(WelcomeToDiskTest, DiskThatWasMountedMeanwhileLivesOnBehindTheNewOne)
{
    pickReal();
    VolumePtr before = desk.mounted("Before", "other password");
    const std::string file = coreText(before->mountPoint()) + "/open.txt";
    std::ofstream open(file);
    desk.controller().volumes().append(std::exchange(before, nullptr));
    welcome(openIt(false));
    const QList<VolumePtr> volumes = desk.controller().volumes();
    ASSERT_EQ(volumes.size(), 2);
    EXPECT_EQ(volumes.first()->path(), picked);
    EXPECT_EQ(labelsOf(volumes).last(), QStringLiteral("Before"));
    open << "words" << std::flush;
    EXPECT_TRUE(open.good());
    EXPECT_EQ(readFile(file), "words");
    open.close();
    EXPECT_TRUE(eventLoopUntil([&] { return volumes.first()->isMounted(); }));
}

TEST_F(WelcomeToDiskTest, ExistingFolderWhoseQuestionIsCancelledStaysListed)
{
    pickReal();
    welcome(existing() + Steps{next, previous});
    const VolumePtr volume = only();
    EXPECT_TRUE(eventLoopUntil([&] { return !volume->isBusy(); }));
    EXPECT_FALSE(volume->isMounted());
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Nimbrel")});
}

TEST_F(WelcomeToDiskTest, FolderWithTheOldNamesIsRenamedAndOpenedByItsOldConfiguration)
{
    pickReal();
    const std::string old = desk.desk.home() + "/Old.nm";
    fs::rename(coreText(picked), old);
    fs::rename(old + "/.encfs6.xml", old + "/Keyfile.nmx");
    picked = qtText(old);
    const VolumePtr volume = open(true);
    EXPECT_EQ(volume->path(), desk.path("Old.nmc"));
    EXPECT_EQ(volume->configPath(), desk.path("Old.nmc/Keyfile.nmx"));
    EXPECT_TRUE(volume->isMounted());
}

TEST_F(WelcomeToDiskTest, DiskThatComesWhenTheListIsEmptyAgainIsNotShown)
{
    pickReal();
    welcome(openIt(true));
    const VolumePtr volume = only();
    desk.controller().volumes().clear();
    EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
    settle();
    EXPECT_TRUE(desk.desk.workspace.opened.isEmpty());
    EXPECT_TRUE(desk.desk.unmount(volume));
}

} // namespace
} // namespace nimbrel::test
