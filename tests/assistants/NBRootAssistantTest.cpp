#include "assistants/NBRootAssistant.h"

#include "assistants/AssistantFixture.h"
#include "assistants/NBPasswordAssistant.h"
#include "assistants/widgets/PathControl.h"
#include "assistants/widgets/PopUpButton.h"

#include <QAbstractItemView>
#include <QLabel>
#include <QTest>
#include <QWheelEvent>

namespace nimbrel::test {
namespace {

const QString noLocation = QStringLiteral("The location you've choosed does not exist.");
const QString noName = QStringLiteral("Please enter a valid folder name.");
const QString taken = QStringLiteral("A file or folder with this name already exists.");

class NBRootAssistantTest : public PagesTest
{
protected:
    void type(const QString &name) { view().folderNameTextField->setText(name); }
    [[nodiscard]] const RootAssistantView &view() const { return page->controls(); }
    [[nodiscard]] QString shownPath() const { return view().rootPathControl->path(); }
    // The inline warning on show; null without one.
    [[nodiscard]] QString warning() const
    {
        EXPECT_EQ(view().warning.image->isHidden(), view().warning.text->isHidden());
        return view().warning.text->isHidden() ? QString() : view().warning.text->text();
    }
    // What a person does who picks that item in the open list.
    void pick(int index)
    {
        view().foldersPopUpButton->setCurrentIndex(index);
        Q_EMIT view().foldersPopUpButton->activated(index);
    }
    void pickOther() { pick(view().foldersPopUpButton->count() - 1); }
    [[nodiscard]] QUrl placeOfOther() const
    {
        return view().foldersPopUpButton->itemData(view().foldersPopUpButton->count() - 1).toUrl();
    }
    void installDropbox()
    {
        const std::string folder = desk.desk.home() + "/Dropbox";
        std::filesystem::create_directories(folder);
        std::filesystem::create_directories(desk.desk.home() + "/.dropbox");
        const QByteArray line = QByteArray::fromStdString(folder).toBase64();
        writeFile(desk.desk.home() + "/.dropbox/host.db", "first\n" + line.toStdString() + "\n");
    }

    std::shared_ptr<NBRootAssistant> page = add<NBRootAssistant>(desk.application);
    std::shared_ptr<NBPasswordAssistant> password = add<NBPasswordAssistant>(desk.application);
};

TEST_F(NBRootAssistantTest, TheStepIsTheNewFolderAndBeginsInItsName)
{
    run();
    EXPECT_EQ(page->orderedSteps(), QStringList{QStringLiteral("Create a new Nimbrel Folder")});
    EXPECT_EQ(firstResponder(), view().folderNameTextField);
    EXPECT_FALSE(view().warning.image->pixmap().isNull());
    EXPECT_EQ(engine->nextButton()->text(), QStringLiteral("Next"));
    EXPECT_FALSE(engine->prevButton()->isEnabled());
}

TEST_F(NBRootAssistantTest, WithoutServicesThereAreDocumentsAndOther)
{
    run();
    const QComboBox &locations = *view().foldersPopUpButton;
    ASSERT_EQ(locations.count(), 2);
    EXPECT_EQ(locations.itemText(0), QStringLiteral("Documents"));
    EXPECT_EQ(locations.itemData(0).toUrl(), QUrl::fromLocalFile(path("Documents")));
    EXPECT_FALSE(locations.itemIcon(0).isNull());
    EXPECT_EQ(locations.itemText(1), QStringLiteral("Other…"));
    EXPECT_TRUE(placeOfOther().isEmpty());
    EXPECT_FALSE(locations.itemIcon(1).isNull());
}

TEST_F(NBRootAssistantTest, TheDocumentsFolderIsTheDesktopsOwn)
{
    std::filesystem::create_directories(desk.desk.desktop().config());
    writeFile(desk.desk.desktop().config() + "/user-dirs.dirs",
              "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n");
    std::filesystem::create_directories(desk.desk.home() + "/Dokumente");
    run();
    EXPECT_EQ(shownPath(), path("Dokumente"));
    EXPECT_EQ(view().foldersPopUpButton->itemText(0), QStringLiteral("Documents"));
}

TEST_F(NBRootAssistantTest, ServicesStandBetweenTwoSeparators)
{
    installDropbox();
    run();
    const QComboBox &locations = *view().foldersPopUpButton;
    ASSERT_EQ(locations.count(), 5);
    const auto isSeparator = [&](int index) {
        return locations.itemData(index, Qt::AccessibleDescriptionRole).toString() ==
               QLatin1String("separator");
    };
    EXPECT_TRUE(isSeparator(1));
    EXPECT_EQ(locations.itemText(2), QStringLiteral("Dropbox"));
    EXPECT_EQ(locations.itemData(2).toUrl(), QUrl::fromLocalFile(path("Dropbox")));
    EXPECT_FALSE(locations.itemIcon(2).isNull());
    EXPECT_TRUE(isSeparator(3));
    EXPECT_EQ(locations.itemText(4), QStringLiteral("Other…"));
}

TEST_F(NBRootAssistantTest, AChosenServiceIsTheLocation)
{
    installDropbox();
    run();
    type(QStringLiteral("Private"));
    pick(2);
    EXPECT_EQ(shownPath(), path("Dropbox/Private.nmc"));
}

TEST_F(NBRootAssistantTest, AnEmptyNameShowsTheBareLocationAndBlocksNextInSimpleMode)
{
    run();
    EXPECT_EQ(shownPath(), path("Documents"));
    EXPECT_EQ(warning(), noName);
    next();
    EXPECT_EQ(alerts(), QStringList{noName});
    EXPECT_EQ(engine->currAssistant(), page);
}

TEST_F(NBRootAssistantTest, ANameOfBlanksGivesAPathWithBlanksAndTheSameWarning)
{
    run();
    type(QStringLiteral("  \t"));
    EXPECT_EQ(shownPath(), path("Documents/  \t.nmc"));
    EXPECT_EQ(warning(), noName);
    next();
    EXPECT_EQ(alerts(), QStringList{noName});
}

TEST_F(NBRootAssistantTest, APlainFileAtThePathIsALocationThatDoesNotExist)
{
    writeFile(desk.desk.home() + "/Documents/Private.nmc", "file");
    run();
    type(QStringLiteral("Private"));
    EXPECT_EQ(warning(), noLocation);
    next();
    EXPECT_EQ(alerts(), QStringList{noLocation});
    EXPECT_EQ(view().folderNameTextField->text(), QStringLiteral("Private"));
}

TEST_F(NBRootAssistantTest, APlainFileInPlaceOfTheLocationComesBeforeTheMissingName)
{
    std::filesystem::remove(desk.desk.home() + "/Documents");
    writeFile(desk.desk.home() + "/Documents", "file");
    run();
    EXPECT_EQ(warning(), noLocation);
}

TEST_F(NBRootAssistantTest, AFolderAtThePathExistsAlready)
{
    std::filesystem::create_directories(desk.desk.home() + "/Documents/Private.nmc");
    run();
    type(QStringLiteral("Private"));
    EXPECT_EQ(warning(), taken);
    next();
    EXPECT_EQ(alerts(), QStringList{taken});
    EXPECT_EQ(engine->currAssistant(), page);
}

TEST_F(NBRootAssistantTest, ADeletedLocationPassesWithAValidName)
{
    std::filesystem::remove(desk.desk.home() + "/Documents");
    run();
    type(QStringLiteral("Private"));
    EXPECT_TRUE(page->checkRootPath());
    EXPECT_EQ(warning(), QString());
    next();
    EXPECT_EQ(engine->currAssistant(), password);
}

TEST_F(NBRootAssistantTest, SuccessLeavesTheTextOfTheWarning)
{
    run();
    type(QStringLiteral("Private"));
    EXPECT_TRUE(view().warning.text->isHidden());
    EXPECT_EQ(view().warning.text->text(), noName);
}

TEST_F(NBRootAssistantTest, InAdvancedModeNextPassesAWarning)
{
    setAdvanced(true);
    run();
    EXPECT_EQ(warning(), noName);
    next();
    EXPECT_EQ(alerts(), QStringList());
    EXPECT_EQ(engine->currAssistant(), password);
}

TEST_F(NBRootAssistantTest, TheModeIsAskedAtEachNext)
{
    setAdvanced(true);
    run();
    setAdvanced(false);
    next();
    EXPECT_EQ(alerts(), QStringList{noName});
    setAdvanced(true);
    next();
    EXPECT_EQ(engine->currAssistant(), password);
}

TEST_F(NBRootAssistantTest, AFolderThatAppearsMeanwhileStopsNextInSimpleMode)
{
    run();
    type(QStringLiteral("Private"));
    std::filesystem::create_directories(desk.desk.home() + "/Documents/Private.nmc");
    next();
    EXPECT_EQ(alerts(), QStringList{taken});
}

TEST_F(NBRootAssistantTest, GoingBackAddsNoLocationsAndRecomputesThePath)
{
    installDropbox();
    run();
    type(QStringLiteral("Private"));
    pick(2);
    next();
    ASSERT_EQ(engine->currAssistant(), password);
    std::filesystem::create_directories(desk.desk.home() + "/Dropbox/Private.nmc");
    goBack();
    EXPECT_EQ(view().foldersPopUpButton->count(), 5);
    EXPECT_EQ(shownPath(), path("Dropbox/Private.nmc"));
    EXPECT_EQ(warning(), taken);
    EXPECT_EQ(firstResponder(), view().folderNameTextField);
}

TEST_F(NBRootAssistantTest, TheNameIsTakenAsItStands)
{
    run();
    for (const char *name : {"a%20b", "a?b#c", "x.nmc", " Büro ", ".", "~", "über; &"}) {
        type(qtText(name));
        EXPECT_EQ(shownPath(), path("Documents/" + std::string(name) + ".nmc"));
        EXPECT_EQ(view().rootPathControl->URL().toLocalFile(), shownPath());
    }
}

TEST_F(NBRootAssistantTest, ANameThatLeadsElsewhereCantBeTyped)
{
    run();
    QTest::keyClicks(view().folderNameTextField, QStringLiteral("../a/b"));
    EXPECT_EQ(view().folderNameTextField->text(), QStringLiteral("..ab"));
    view().folderNameTextField->clear();
    // 251 bytes and the extension are as long as a name can be.
    for (int letter = 0; letter < 130; ++letter)
        view().folderNameTextField->insert(QStringLiteral("ü"));
    EXPECT_EQ(view().folderNameTextField->text(), QString(125, QChar(u'ü')));
}

TEST_F(NBRootAssistantTest, OtherAsksForAFolderWhichIsTheLocationThen)
{
    std::filesystem::create_directories(desk.desk.home() + "/Cloud/Mine");
    run();
    type(QStringLiteral("Private"));
    pickOther();
    QFileDialog &sheet = sheetOf(*engine->window());
    EXPECT_EQ(sheet.fileMode(), QFileDialog::Directory);
    EXPECT_TRUE(sheet.testOption(QFileDialog::ShowDirsOnly));
    EXPECT_FALSE(sheet.testOption(QFileDialog::ReadOnly)); // it may make folders
    EXPECT_EQ(sheet.windowModality(), Qt::WindowModal);
    choose(sheet, path("Cloud/Mine"));
    EXPECT_EQ(placeOfOther(), QUrl::fromLocalFile(path("Cloud/Mine")));
    EXPECT_EQ(shownPath(), path("Cloud/Mine/Private.nmc"));
}

TEST_F(NBRootAssistantTest, ACancelLeavesOtherChosenWithoutAPlace)
{
    run();
    type(QStringLiteral("Private"));
    pickOther();
    cancel(sheetOf(*engine->window()));
    EXPECT_EQ(view().foldersPopUpButton->currentText(), QStringLiteral("Other…"));
    EXPECT_TRUE(placeOfOther().isEmpty());
    EXPECT_EQ(shownPath(), path("Documents/Private.nmc")); // nothing changes
    type(QStringLiteral("Privates"));
    EXPECT_TRUE(view().rootPathControl->URL().isEmpty());
    EXPECT_EQ(warning(), QString());
    EXPECT_TRUE(page->checkRootPath()); // the path control alone tells that no place is chosen
}

TEST_F(NBRootAssistantTest, ACancelKeepsThePlaceThatOtherHad)
{
    std::filesystem::create_directories(desk.desk.home() + "/Cloud");
    run();
    pickOther();
    choose(sheetOf(*engine->window()), path("Cloud"));
    pickOther();
    cancel(sheetOf(*engine->window()));
    EXPECT_EQ(placeOfOther(), QUrl::fromLocalFile(path("Cloud")));
    EXPECT_EQ(shownPath(), path("Cloud"));
}

TEST_F(NBRootAssistantTest, OtherTakesEachFolderInItsTurn)
{
    run();
    for (const char *name : {"One", "Two"}) {
        std::filesystem::create_directories(desk.desk.home() + "/" + name);
        pickOther();
        choose(sheetOf(*engine->window()), path(name));
        EXPECT_EQ(shownPath(), path(name));
    }
}

TEST_F(NBRootAssistantTest, KeysAndWheelDontSetOffOtherOnTheirWay)
{
    run();
    PopUpButton &locations = *view().foldersPopUpButton;
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_End, Qt::Key_PageDown, Qt::Key_O}) {
        QTest::keyClick(&locations, key);
        EXPECT_EQ(locations.currentIndex(), 0);
        EXPECT_TRUE(locations.view()->isVisible());
        locations.hidePopup();
    }
    QWheelEvent down(QPointF(5, 5), QPointF(5, 5), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(&locations, &down);
    EXPECT_EQ(locations.currentIndex(), 0);
    EXPECT_FALSE(hasSheet(*engine->window()));
}

TEST_F(NBRootAssistantTest, OtherIsSetOffByTheKeyThatPicksIt)
{
    run();
    PopUpButton &locations = *view().foldersPopUpButton;
    QTest::keyClick(&locations, Qt::Key_Down);
    QTest::keyClick(locations.view(), Qt::Key_Down);
    QTest::keyClick(locations.view(), Qt::Key_Return);
    EXPECT_EQ(locations.currentText(), QStringLiteral("Other…"));
    EXPECT_TRUE(hasSheet(*engine->window()));
}

// The rules let it pass, and the folder would be made at "/".
TEST_F(NBRootAssistantTest, WithoutALocationNextStaysInBothModes)
{
    run();
    pickOther();
    cancel(sheetOf(*engine->window()));
    type(QStringLiteral("Private")); // until then nothing has changed
    EXPECT_TRUE(page->checkRootPath());
    for (const bool isAdvanced : {false, true}) {
        setAdvanced(isAdvanced);
        next();
        EXPECT_EQ(alerts(),
                  QStringList{QStringLiteral("Please choose a location for the folder.")});
        EXPECT_EQ(engine->currAssistant(), page);
    }
}

} // namespace
} // namespace nimbrel::test
