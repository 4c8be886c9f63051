#include "windows/NBAddVolumesWindowController.h"

#include "assistants/AssistantFixture.h"
#include "assistants/widgets/PathControl.h"
#include "assistants/widgets/PopUpButton.h"
#include "discovery/NBCloudServiceDiscoveryController.h"
#include "windows/views/AddVolumesWindow.h"

#include <QLabel>
#include <QProgressBar>
#include <QTableView>
#include <QTest>
#include <QThreadPool>

namespace nimbrel::test {
namespace {

const QString pleaseSelect =
    QStringLiteral("Please select a Nimbrel Folder from the list or browse for a custom one.");
const QString notValid = QStringLiteral("This is not a valid Nimbrel Folder.");
const QString pleaseWait =
    QStringLiteral("If the folder is being synchronized right now, please wait until the whole "
                   "folder has been synchronized and try again.");
const QString exists = QStringLiteral("A volume with this Nimbrel Folder already exists.");
const QString noneHere =
    QStringLiteral("No Nimbrel Folders were found here. Use “Other…” to browse.");

// Until no scan runs any more, also one that nobody waits for.
void waitForScans()
{
    for (QThreadPool *pool : QCoreApplication::instance()->findChildren<QThreadPool *>())
        pool->waitForDone();
}

class NBAddVolumesWindowTest : public ::testing::Test
{
protected:
    NBAddVolumesWindowTest()
    {
        std::filesystem::create_directories(desk.desk.home() + "/Documents");
        parent.show();
    }
    ~NBAddVolumesWindowTest() override
    {
        controller.reset();
        waitForScans();
    }

    void begin()
    {
        controller =
            std::make_unique<NBAddVolumesWindowController>(desk.application, desk.services);
        controller->beginSheetModalForWindow(parent,
                                             [this](const QString &taken) { paths += taken; });
    }
    void open()
    {
        begin();
        ASSERT_TRUE(eventLoopUntil([this] { return popUp().isEnabled(); }));
    }
    [[nodiscard]] AddVolumesWindow &window() const { return *controller->window(); }
    [[nodiscard]] PopUpButton &popUp() const { return *window().foldersPopUpButton; }
    [[nodiscard]] QTableView &table() const { return *window().foldersTableView; }
    [[nodiscard]] QString text(int row, int column) const
    {
        return table().model()->index(row, column).data().toString();
    }
    [[nodiscard]] QString scanText() const { return window().foldersScanTextField->text(); }
    // What a person does who picks that item in the open list.
    void pick(int index)
    {
        popUp().setCurrentIndex(index);
        Q_EMIT popUp().activated(index);
    }
    QFileDialog &browse()
    {
        pick(popUp().count() - 1);
        return sheetOf(window());
    }
    void select(int row) { table().selectRow(row); }
    void accept() { window().addVolumeButton->click(); }

    QString encrypted(const std::string &name)
    {
        return desk.desk.makeFolder(name, {"Keyfile.nmx"});
    }
    void installDropbox(const std::string &folder = "/Dropbox")
    {
        std::filesystem::create_directories(desk.desk.home() + "/.dropbox");
        const QByteArray line = QByteArray::fromStdString(desk.desk.home() + folder).toBase64();
        writeFile(desk.desk.home() + "/.dropbox/host.db", "first\n" + line.toStdString() + "\n");
    }
    void installNextcloud()
    {
        std::filesystem::create_directories(desk.desk.home() + "/Nextcloud");
        std::filesystem::create_directories(desk.desk.desktop().config() + "/Nextcloud");
        writeFile(desk.desk.desktop().config() + "/Nextcloud/nextcloud.cfg",
                  "[Accounts]\nversion=2\n0\\Folders\\1\\localPath=" + desk.desk.home() +
                      "/Nextcloud/\n");
    }
    [[nodiscard]] QString path(const std::string &name) const { return desk.path(name); }
    [[nodiscard]] const std::vector<Alert> &alerts() const { return desk.desk.alerts.shown; }

    AssistantsDesk desk;
    QWidget parent;
    std::unique_ptr<NBAddVolumesWindowController> controller;
    QStringList paths; // handed over
};

TEST_F(NBAddVolumesWindowTest, ItIsASheetThatDoesNotBlock)
{
    begin();
    EXPECT_EQ(window().objectName(), QStringLiteral("NBAddVolumesWindow"));
    EXPECT_EQ(window().windowModality(), Qt::WindowModal);
    EXPECT_EQ(window().parentWidget(), &parent);
    EXPECT_TRUE(window().isVisible());
    EXPECT_TRUE(window().addVolumeButton->isDefault());
}

TEST_F(NBAddVolumesWindowTest, WhileItLooksTheLocationsAreDisabledAndTheIndicatorRuns)
{
    encrypted("Documents/Secret.nmc");
    begin();
    EXPECT_FALSE(popUp().isEnabled());
    EXPECT_FALSE(table().isEnabled());
    EXPECT_FALSE(window().rootPathControl->isEnabled());
    EXPECT_TRUE(window().foldersScanProgressIndicator->isVisible());
    EXPECT_EQ(window().foldersScanProgressIndicator->maximum(), 0);
    EXPECT_EQ(scanText(), QStringLiteral("Looking for Nimbrel Folders in Documents…"));
    EXPECT_TRUE(controller->availableFolders().isEmpty());
}

TEST_F(NBAddVolumesWindowTest, WithoutServicesThereAreDocumentsAndOther)
{
    open();
    ASSERT_EQ(popUp().count(), 2);
    EXPECT_EQ(popUp().itemText(0), QStringLiteral("Documents"));
    EXPECT_EQ(popUp().itemData(0).toUrl(), QUrl::fromLocalFile(path("Documents")));
    EXPECT_FALSE(popUp().itemIcon(0).isNull());
    EXPECT_EQ(popUp().itemText(1), QStringLiteral("Other…"));
    EXPECT_FALSE(popUp().itemIcon(1).isNull());
    EXPECT_TRUE(window().rootPathControl->isEnabled());
    EXPECT_EQ(window().rootPathControl->path(), path("Documents"));
    EXPECT_FALSE(window().foldersScanProgressIndicator->isVisible());
}

TEST_F(NBAddVolumesWindowTest, TheTableShowsNameAndPathOfWhatWasFound)
{
    const QString secret = encrypted("Documents/inner/Top.Secret.nmc");
    open();
    EXPECT_TRUE(table().isEnabled());
    ASSERT_EQ(table().model()->rowCount(), 1);
    EXPECT_EQ(text(0, 0), QStringLiteral("Top.Secret"));
    EXPECT_EQ(text(0, 1), secret);
    EXPECT_EQ(table().model()->index(0, 1).data(Qt::ToolTipRole).toString(), secret);
    EXPECT_EQ(table().textElideMode(), Qt::ElideMiddle);
    EXPECT_EQ(table().model()->headerData(0, Qt::Horizontal).toString(), QStringLiteral("Name"));
    EXPECT_EQ(table().model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Path"));
    EXPECT_EQ(scanText(), QStringLiteral("1 Nimbrel Folder was found here."));
    EXPECT_TRUE(table().selectionModel()->selectedRows().isEmpty());
}

TEST_F(NBAddVolumesWindowTest, ServicesStandBetweenSeparatorsAndSeparatorsTakeUpIndexes)
{
    installDropbox();
    installNextcloud();
    const QString one = encrypted("Dropbox/One.nmc");
    const QString two = encrypted("Nextcloud/Two.nmc");
    const QString three = encrypted("Nextcloud/inner/Three.nmc");
    open();
    ASSERT_EQ(popUp().count(), 6);
    const auto isSeparator = [&](int index) {
        return popUp().itemData(index, Qt::AccessibleDescriptionRole).toString() ==
               QLatin1String("separator");
    };
    EXPECT_TRUE(isSeparator(1));
    EXPECT_EQ(popUp().itemText(2), QStringLiteral("Dropbox"));
    EXPECT_EQ(popUp().itemText(3), QStringLiteral("Nextcloud"));
    EXPECT_FALSE(popUp().itemIcon(3).isNull());
    EXPECT_TRUE(isSeparator(4));
    EXPECT_EQ(popUp().itemText(5), QStringLiteral("Other…"));
    EXPECT_EQ(controller->availableFolders().keys(), (QList<int>{0, 2, 3}));
    EXPECT_EQ(controller->availableFolders().value(2), QList<QUrl>{QUrl::fromLocalFile(one)});
    pick(3);
    EXPECT_EQ(controller->lastSelectedIndex(), 3);
    EXPECT_EQ(window().rootPathControl->path(), path("Nextcloud"));
    QStringList shown{text(0, 1), text(1, 1)};
    shown.sort();
    EXPECT_EQ(shown, (QStringList{two, three}));
    EXPECT_EQ(scanText(), QStringLiteral("2 Nimbrel Folders were found here."));
}

TEST_F(NBAddVolumesWindowTest, ALocationAppearsBeforeItsFolderHasBeenLookedThrough)
{
    installDropbox();
    encrypted("Dropbox/One.nmc");
    begin();
    QStringList texts;
    QObject::connect(popUp().model(), &QAbstractItemModel::rowsInserted, &window(), [&] {
        texts += scanText();
        if (popUp().count() == 3) { // no "Other…" yet
            EXPECT_FALSE(popUp().isEnabled());
            EXPECT_TRUE(controller->availableFolders().isEmpty());
            EXPECT_EQ(table().model()->rowCount(), 0);
        }
    });
    ASSERT_TRUE(eventLoopUntil([this] { return popUp().isEnabled(); }));
    EXPECT_EQ(popUp().itemText(2), QStringLiteral("Dropbox"));
    const QString looking = QStringLiteral("Looking for Nimbrel Folders in Dropbox…");
    // A separator and the item; a separator and "Other…" when all has been looked through.
    EXPECT_EQ(texts, QStringList(4, looking));
}

TEST_F(NBAddVolumesWindowTest, AtALocationWithoutFoldersTheTableIsDisabledAndTheButtonSaysSo)
{
    installDropbox();
    std::filesystem::create_directories(desk.desk.home() + "/Dropbox");
    encrypted("Documents/Secret.nmc");
    open();
    pick(2);
    EXPECT_FALSE(table().isEnabled());
    EXPECT_EQ(table().model()->rowCount(), 0);
    EXPECT_EQ(scanText(), noneHere);
    accept();
    ASSERT_EQ(alerts().size(), 1U);
    EXPECT_EQ(alerts()[0].messageText, pleaseSelect);
    EXPECT_TRUE(window().isVisible());
    pick(0);
    EXPECT_TRUE(table().isEnabled());
}

TEST_F(NBAddVolumesWindowTest, ALocationThatCantBeReadHasNoFolders)
{
    installDropbox();
    writeFile(desk.desk.home() + "/Dropbox", "no folder at all");
    std::filesystem::remove(desk.desk.home() + "/Documents");
    open();
    EXPECT_FALSE(table().isEnabled());
    pick(2);
    EXPECT_FALSE(table().isEnabled());
    EXPECT_TRUE(controller->availableFolders().contains(2));
    EXPECT_TRUE(controller->availableFolders().value(2).isEmpty());
}

TEST_F(NBAddVolumesWindowTest, WithoutASelectionTheButtonAsksForOne)
{
    encrypted("Documents/Secret.nmc");
    open();
    accept();
    ASSERT_EQ(alerts().size(), 1U);
    EXPECT_EQ(alerts()[0].messageText, pleaseSelect);
    EXPECT_TRUE(paths.isEmpty());
}

TEST_F(NBAddVolumesWindowTest, TheSelectedFolderIsHandedOverAfterTheSheetHasGone)
{
    const QString secret = encrypted("Documents/Secret.nmc");
    open();
    const QPointer<AddVolumesWindow> sheet = &window();
    select(0);
    accept();
    EXPECT_EQ(paths, QStringList{secret});
    EXPECT_EQ(controller->window(), nullptr);
    EXPECT_FALSE(sheet && sheet->isVisible());
    EXPECT_TRUE(alerts().empty());
}

TEST_F(NBAddVolumesWindowTest, ADoubleClickTakesTheFolder)
{
    const QString secret = encrypted("Documents/Secret.nmc");
    open();
    const QPoint place = table().visualRect(table().model()->index(0, 0)).center();
    QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(paths, QStringList{secret});
}

TEST_F(NBAddVolumesWindowTest, EnterInTheTableTakesTheFolderOnce)
{
    const QString secret = encrypted("Documents/Secret.nmc");
    open();
    EXPECT_EQ(window().focusWidget(), &popUp());
    QTest::keyClick(&popUp(), Qt::Key_Tab);
    EXPECT_EQ(window().focusWidget(), &table());
    QTest::keyClick(&table(), Qt::Key_Return);
    EXPECT_EQ(paths, QStringList{secret});
    EXPECT_TRUE(alerts().empty());
}

TEST_F(NBAddVolumesWindowTest, ACancelCallsNoHandler)
{
    encrypted("Documents/Secret.nmc");
    for (const bool byKey : {false, true}) {
        open();
        select(0);
        const QPointer<AddVolumesWindow> sheet = &window();
        if (byKey)
            QTest::keyClick(sheet, Qt::Key_Escape);
        else
            sheet->cancelButton->click();
        EXPECT_EQ(controller->window(), nullptr);
        EXPECT_FALSE(sheet->isVisible());
    }
    EXPECT_TRUE(paths.isEmpty());
}

TEST_F(NBAddVolumesWindowTest, TheHandlerMayDropTheController)
{
    const QString secret = encrypted("Documents/Secret.nmc");
    open();
    controller = std::make_unique<NBAddVolumesWindowController>(desk.application, desk.services);
    controller->beginSheetModalForWindow(parent, [this](const QString &taken) {
        controller.reset();
        paths += taken;
    });
    ASSERT_TRUE(eventLoopUntil([this] { return popUp().isEnabled(); }));
    const QPoint place = table().visualRect(table().model()->index(0, 0)).center();
    QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(paths, QStringList{secret});
    EXPECT_EQ(controller, nullptr);
}

TEST_F(NBAddVolumesWindowTest, ACancelInThePanelReturnsToTheLocationBefore)
{
    installDropbox();
    const QString one = encrypted("Dropbox/One.nmc");
    open();
    pick(2);
    QFileDialog &sheet = browse();
    EXPECT_EQ(sheet.fileMode(), QFileDialog::Directory);
    EXPECT_TRUE(sheet.testOption(QFileDialog::ReadOnly)); // it makes no folders
    EXPECT_EQ(controller->lastSelectedIndex(), 2);
    cancel(sheet);
    EXPECT_EQ(popUp().currentIndex(), 2);
    EXPECT_EQ(window().rootPathControl->path(), path("Dropbox"));
    ASSERT_EQ(table().model()->rowCount(), 1);
    EXPECT_EQ(text(0, 1), one);
    EXPECT_TRUE(table().isEnabled());
}

TEST_F(NBAddVolumesWindowTest, AFolderFromThePanelIsHandedOverAfterBothHaveGone)
{
    const QString elsewhere = encrypted("Elsewhere/Mine");
    open();
    QFileDialog &panel = browse();
    const QPointer<AddVolumesWindow> sheet = &window();
    choose(panel, elsewhere);
    EXPECT_EQ(paths, QStringList{elsewhere});
    EXPECT_EQ(controller->window(), nullptr);
    EXPECT_TRUE(controller->selectedPath().isNull());
    EXPECT_FALSE(sheet && sheet->isVisible());
}

TEST_F(NBAddVolumesWindowTest, InSimpleModeAFolderWithTheOldExtensionIsHandedOnUnderItsNewName)
{
    encrypted("Elsewhere/Old.nm");
    open();
    choose(browse(), path("Elsewhere/Old.nm"));
    EXPECT_EQ(paths, QStringList{path("Elsewhere/Old.nmc")});
    EXPECT_TRUE(Util::directoryExists(path("Elsewhere/Old.nmc")));
    EXPECT_FALSE(Util::exists(path("Elsewhere/Old.nm")));
}

TEST_F(NBAddVolumesWindowTest, ChosenFromTheTableThatFolderHandsOnItsOldPath)
{
    encrypted("Documents/Old.nm");
    open();
    select(0);
    accept();
    ASSERT_EQ(paths, QStringList{path("Documents/Old.nm")});
    EXPECT_EQ(controller->selectedPath(), path("Documents/Old.nmc"));
    EXPECT_EQ(NBNimbrelVolume::withPath(desk.services, paths[0])->path(),
              path("Documents/Old.nmc")); // it still resolves
}

TEST_F(NBAddVolumesWindowTest, InAdvancedModeAListedFolderIsRefusedAndInSimpleModeTaken)
{
    const VolumePtr listed = desk.archived("Documents/Secret", "pass");
    desk.controller().addVolume(listed);
    desk.application.isAdvanced = true;
    open();
    select(0);
    accept();
    ASSERT_EQ(alerts().size(), 1U);
    EXPECT_EQ(alerts()[0].messageText, exists);
    EXPECT_TRUE(paths.isEmpty());
    EXPECT_TRUE(window().isVisible());
    desk.application.isAdvanced = false; // it is asked at each use
    accept();
    EXPECT_EQ(paths, QStringList{listed->path()});
}

TEST_F(NBAddVolumesWindowTest, InAdvancedModeAFolderWithoutConfigurationIsTakenAndNotRenamed)
{
    desk.application.isAdvanced = true;
    const QString bare = desk.desk.makeFolder("Elsewhere/Bare.nm");
    open();
    choose(browse(), bare);
    EXPECT_EQ(paths, QStringList{bare});
    EXPECT_TRUE(Util::directoryExists(bare));
}

TEST_F(NBAddVolumesWindowTest, ARefusedFolderLeavesThePanelThereWhichCanStillBeCancelled)
{
    desk.desk.makeFolder("Elsewhere/Bare.nmc");
    const QString good = encrypted("Elsewhere/Good.nmc");
    open();
    choose(browse(), path("Elsewhere/Bare.nmc"));
    ASSERT_EQ(alerts().size(), 1U);
    EXPECT_EQ(alerts()[0].messageText, notValid);
    EXPECT_EQ(alerts()[0].informativeText, pleaseWait);
    ASSERT_TRUE(hasSheet(window()));
    EXPECT_EQ(sheetOf(window()).directory().absolutePath(), path("Elsewhere"));
    EXPECT_TRUE(controller->selectedPath().isNull());
    cancel(sheetOf(window()));
    EXPECT_EQ(popUp().currentIndex(), 0);
    EXPECT_TRUE(paths.isEmpty());
    choose(browse(), path("Elsewhere/Bare.nmc"));
    choose(sheetOf(window()), good);
    EXPECT_EQ(paths, QStringList{good});
}

TEST_F(NBAddVolumesWindowTest, APlainFileFailsTheCheckInEitherMode)
{
    writeFile(desk.desk.home() + "/Documents/File.nmc", "file");
    open();
    for (const bool isAdvanced : {false, true}) {
        desk.application.isAdvanced = isAdvanced;
        EXPECT_FALSE(controller->validateURL(QUrl::fromLocalFile(path("Documents/File.nmc"))));
        ASSERT_FALSE(alerts().empty());
        EXPECT_EQ(alerts().back().messageText, notValid);
        EXPECT_EQ(alerts().back().informativeText, pleaseWait);
    }
    EXPECT_EQ(alerts().size(), 2U);
}

TEST_F(NBAddVolumesWindowTest, AFolderThatHasGoneSinceIsRefused)
{
    encrypted("Documents/Secret.nmc");
    for (const bool isAdvanced : {false, true}) {
        desk.application.isAdvanced = isAdvanced;
        encrypted("Documents/Secret.nmc");
        open();
        select(0);
        std::filesystem::remove_all(desk.desk.home() + "/Documents/Secret.nmc");
        accept();
        EXPECT_TRUE(window().isVisible());
        EXPECT_EQ(alerts().back().messageText, notValid);
    }
    EXPECT_TRUE(paths.isEmpty());
}

TEST_F(NBAddVolumesWindowTest, AClosedSheetLeavesItsScanToItselfAndStopsIt)
{
    for (int outer = 0; outer < 20; ++outer)
        for (int inner = 0; inner < 100; ++inner)
            std::filesystem::create_directories(desk.desk.home() + "/Documents/" +
                                                std::to_string(outer) + "/" +
                                                std::to_string(inner));
    for (int showing = 0; showing < 10; ++showing) {
        begin();
        if (showing % 2 == 0)
            window().cancelButton->click();
        else
            controller.reset();
        QCoreApplication::processEvents();
    }
    waitForScans();
    QCoreApplication::processEvents(); // nobody is there to be told
    EXPECT_TRUE(paths.isEmpty());
}

TEST_F(NBAddVolumesWindowTest, TheSheetMayGoWithItsParentWhileTheScanRuns)
{
    auto owner = std::make_unique<QWidget>();
    owner->show();
    controller = std::make_unique<NBAddVolumesWindowController>(desk.application, desk.services);
    controller->beginSheetModalForWindow(*owner, [this](const QString &taken) { paths += taken; });
    owner.reset();
    EXPECT_EQ(controller->window(), nullptr);
    waitForScans();
    QCoreApplication::processEvents();
}

TEST_F(NBAddVolumesWindowTest, AScanThatNobodyHasAnyMoreStopsAndTellsNothing)
{
    const QUrl documents = QUrl::fromLocalFile(path("Documents"));
    int ends = 0;
    auto scan = std::make_shared<FolderScan>();
    QObject::connect(scan.get(), &FolderScan::ended, scan.get(), [&] { ++ends; });
    scan->start(documents);
    scan.reset();
    waitForScans();
    QCoreApplication::processEvents();
    EXPECT_EQ(ends, 0);
}

TEST(FoldersTableTest, AnotherColumnAndARowPastTheEndGiveNothing)
{
    FoldersTable folders;
    EXPECT_EQ(folders.numberOfRowsInTableView(), 0);
    EXPECT_FALSE(folders.objectValueForTableColumn(QStringLiteral("Name"), 0).isValid());
    folders.setFolders({QUrl(QStringLiteral("file:///tmp/A%20b.nmc/"))});
    EXPECT_EQ(folders.numberOfRowsInTableView(), 1);
    EXPECT_EQ(folders.objectValueForTableColumn(QStringLiteral("Name"), 0).toString(),
              QStringLiteral("A b"));
    EXPECT_EQ(folders.objectValueForTableColumn(QStringLiteral("Path"), 0).toString(),
              QStringLiteral("/tmp/A b.nmc"));
    EXPECT_FALSE(folders.objectValueForTableColumn(QStringLiteral("Size"), 0).isValid());
    EXPECT_FALSE(folders.objectValueForTableColumn(QStringLiteral("Path"), 1).isValid());
    EXPECT_FALSE(folders.objectValueForTableColumn(QStringLiteral("Path"), -1).isValid());
}

} // namespace
} // namespace nimbrel::test
