#include "assistants/NBAdvancedAssistant.h"

#include "assistants/AssistantFixture.h"
#include "assistants/NBPasswordAssistant.h"
#include "assistants/NBRootAssistant.h"
#include "assistants/widgets/PasswordField.h"

#include <QComboBox>
#include <QLabel>

#include <limits>

namespace nimbrel::test {
namespace {

const QString labelTaken = QStringLiteral("A volume with this label already exists.");
const QString oddBlocks = QStringLiteral("The block size has to be a multiple of 16.");
const QString noConfig = QStringLiteral("You did not specify an alternative configuration file.");

class NBAdvancedAssistantTest : public PagesTest
{
protected:
    NBAdvancedAssistantTest() { setAdvanced(true); }

    [[nodiscard]] const AdvancedAssistantView &view() const { return page->controls(); }
    VolumePtr listed(const QString &label)
    {
        VolumePtr volume = NBNimbrelVolume::withPath(desk.services, path("listed.nmc"));
        volume->setLabel(label);
        desk.controller().addVolume(volume);
        return volume;
    }
    // Whether Next goes on; else what the user is told.
    [[nodiscard]] QString nextTells()
    {
        next();
        const QStringList told = alerts();
        EXPECT_EQ(told.isEmpty(), engine->finished());
        return told.join(u'|');
    }

    std::shared_ptr<NBAdvancedAssistant> page = assistant<NBAdvancedAssistant>(desk.application);
};

// Behind the location and the password.
class NewFolderTest : public NBAdvancedAssistantTest
{
protected:
    NewFolderTest() { engine->addAssistant(page); }

    void show(const QString &folderName = QStringLiteral("Private"))
    {
        run();
        root->controls().folderNameTextField->setText(folderName);
        next();
        password->controls().passphraseTextField->setText(QStringLiteral("secret"));
        password->controls().confirmTextField->setText(QStringLiteral("secret"));
        next();
        ASSERT_EQ(engine->currAssistant(), page);
    }

    std::shared_ptr<NBRootAssistant> root = add<NBRootAssistant>(desk.application);
    std::shared_ptr<NBPasswordAssistant> password = add<NBPasswordAssistant>(desk.application);
};

// Alone, on a folder that exists.
class OpenFolderTest : public NBAdvancedAssistantTest
{
protected:
    OpenFolderTest()
    {
        page->setIsOpen(true);
        engine->addAssistant(page);
    }
};

TEST_F(NewFolderTest, TheStepIsTheLastAndBeginsInTheLabel)
{
    show();
    EXPECT_EQ(page->orderedSteps(), QStringList{QStringLiteral("Modify advanced options")});
    EXPECT_EQ(firstResponder(), view().labelTextField);
    EXPECT_EQ(engine->nextButton()->text(), QStringLiteral("Finish"));
    EXPECT_EQ(engine->prevButton()->text(), QStringLiteral("Go Back"));
}

TEST_F(NewFolderTest, TheControlsBeginWithTheValuesOfANewVolume)
{
    show();
    EXPECT_EQ(page->keySize(), 256);
    EXPECT_EQ(page->blockSize(), 4096);
    for (const QCheckBox *button :
         {view().filenameEncryptionButton, view().automountButton, view().checkKeyButton})
        EXPECT_TRUE(button->isChecked());
    for (const QCheckBox *button : {view().spotlightButton, view().mountAsLocalDiskButton,
                                    view().mountForAllUsersButton, view().configButton})
        EXPECT_FALSE(button->isChecked());
    EXPECT_FALSE(view().configTextField->isEnabled());
    EXPECT_FALSE(view().configBrowseButton->isEnabled());
    EXPECT_TRUE(view().algorithmButton->isVisible());
}

TEST_F(NewFolderTest, TheLabelIsTheFoldersName)
{
    show(QStringLiteral(" My folder "));
    EXPECT_EQ(view().labelTextField->text(), QStringLiteral(" My folder "));
}

TEST_F(NewFolderTest, WithoutANameTheLabelIsNimbrel)
{
    show(QString());
    EXPECT_EQ(view().labelTextField->text(), QStringLiteral("Nimbrel"));
}

TEST_F(NewFolderTest, GoingBackAndForwardResetsLabelCipherAndFileNamesAlone)
{
    show();
    view().labelTextField->setText(QStringLiteral("Mine"));
    view().algorithmButton->setCurrentText(QStringLiteral("AES-128"));
    view().filenameEncryptionButton->setChecked(false);
    view().blockSizeTextField->setText(QStringLiteral("1024"));
    view().automountButton->setChecked(false);
    goBack();
    next();
    ASSERT_EQ(engine->currAssistant(), page);
    EXPECT_EQ(view().labelTextField->text(), QStringLiteral("Private"));
    EXPECT_EQ(page->keySize(), 256);
    EXPECT_TRUE(view().filenameEncryptionButton->isChecked());
    EXPECT_EQ(page->blockSize(), 1024);
    EXPECT_FALSE(view().automountButton->isChecked());
}

TEST_F(NewFolderTest, PrevGoesBack)
{
    show();
    goBack();
    EXPECT_EQ(engine->currAssistant(), password);
}

TEST_F(NewFolderTest, TheKeySizeFollowsFromTheTitle)
{
    show();
    for (const auto &[title, bits] :
         {std::pair("AES-128", 128), {"AES-192", 192}, {"AES-256", 256}}) {
        const int index = view().algorithmButton->findText(QLatin1String(title));
        ASSERT_GE(index, 0);
        view().algorithmButton->setCurrentIndex(index);
        EXPECT_EQ(page->keySize(), bits);
    }
    view().algorithmButton->addItem(QStringLiteral("Another"));
    view().algorithmButton->setCurrentText(QStringLiteral("Another"));
    EXPECT_EQ(page->keySize(), 256);
}

TEST_F(NewFolderTest, TheBlockSizeIsTheNumberThatTheTextBeginsWith)
{
    using Limits = std::numeric_limits<qint32>;
    const QList<std::pair<const char *, qint32>> texts{{"4096", 4096},
                                                       {"4096 bytes", 4096},
                                                       {"  7", 7},
                                                       {"+5", 5},
                                                       {"-16", -16},
                                                       {"", 0},
                                                       {"bytes", 0},
                                                       {"- 3", 0},
                                                       {"0x10", 0},
                                                       {"1e3", 1},
                                                       {"16.9", 16},
                                                       {"--1", 0},
                                                       {"2147483647", Limits::max()},
                                                       {"2147483648", Limits::max()},
                                                       {"-2147483648", Limits::min()},
                                                       {"-2147483649", Limits::min()},
                                                       {"99999999999999999999999", Limits::max()},
                                                       {"+", 0},
                                                       {"\t\n32", 32}};
    for (const auto &[text, size] : texts) {
        view().blockSizeTextField->setText(QLatin1String(text));
        EXPECT_EQ(page->blockSize(), size) << text;
    }
}

TEST_F(NewFolderTest, ABlockSizeOf4097IsRefused)
{
    show();
    for (const char *text : {"4097", "1", "15", "2147483647"}) {
        view().blockSizeTextField->setText(QLatin1String(text));
        EXPECT_EQ(nextTells(), oddBlocks) << text;
    }
}

TEST_F(NewFolderTest, BlockSizesOfZeroAndBelowPass)
{
    show();
    for (const char *text : {"0", "", "-16", "-5", "16"}) {
        view().blockSizeTextField->setText(QLatin1String(text));
        EXPECT_TRUE(page->checkAdvanced()) << text;
    }
    EXPECT_EQ(alerts(), QStringList());
}

TEST_F(NewFolderTest, ALabelOfAnotherVolumeIsRefused)
{
    listed(QStringLiteral("First"));
    listed(QStringLiteral("Private"));
    show();
    EXPECT_EQ(nextTells(), labelTaken);
    view().labelTextField->setText(QStringLiteral("private"));
    EXPECT_EQ(nextTells(), QString());
}

TEST_F(NewFolderTest, LabelsAreComparedWithoutTrimming)
{
    listed(QStringLiteral("Private"));
    show();
    view().labelTextField->setText(QStringLiteral("Private "));
    EXPECT_TRUE(page->checkAdvanced());
}

TEST_F(NewFolderTest, AnEmptyLabelIsAllowedButOnce)
{
    show();
    listed(QString()); // a record without a label isn't one with an empty label
    view().labelTextField->clear();
    EXPECT_TRUE(page->checkAdvanced());
    listed(QStringLiteral(""));
    EXPECT_FALSE(page->checkAdvanced());
    EXPECT_EQ(alerts(), QStringList{labelTaken});
}

TEST_F(NewFolderTest, AnotherConfigurationFileHasToBeNamed)
{
    show();
    view().configButton->click();
    EXPECT_EQ(nextTells(), noConfig);
    view().configTextField->setText(path("mine.xml"));
    EXPECT_EQ(nextTells(), QString());
}

// It would lie in the folder where the program happens to run, and be looked for elsewhere later.
TEST_F(NewFolderTest, AConfigurationFileWithoutItsWholePathIsRefused)
{
    show();
    view().configButton->click();
    view().configTextField->setText(QStringLiteral("mine.xml"));
    EXPECT_EQ(nextTells(), QStringLiteral("Please give the whole path of the configuration file, "
                                          "beginning with \"/\"."));
    view().configTextField->setText(QStringLiteral("~/mine.xml"));
    EXPECT_EQ(nextTells(), QString());
    EXPECT_EQ(view().configTextField->text(), path("mine.xml"));
}

TEST_F(NewFolderTest, AnUnusedEmptyConfigurationFileIsNoMatter)
{
    show();
    EXPECT_EQ(nextTells(), QString());
}

TEST_F(NewFolderTest, TheFirstFailureIsToldAlone)
{
    listed(QStringLiteral("Private"));
    show();
    view().blockSizeTextField->setText(QStringLiteral("17"));
    view().configButton->click();
    EXPECT_EQ(nextTells(), labelTaken);
    view().labelTextField->setText(QStringLiteral("Mine"));
    EXPECT_EQ(nextTells(), oddBlocks);
    view().blockSizeTextField->setText(QStringLiteral("32"));
    EXPECT_EQ(nextTells(), noConfig);
    EXPECT_EQ(view().labelTextField->text(), QStringLiteral("Mine"));
}

TEST_F(NewFolderTest, TheConfigurationFilesFieldsAreAsEnabledAsItsButton)
{
    show();
    for (const bool isOn : {true, false}) {
        view().configButton->click();
        EXPECT_EQ(view().configButton->isChecked(), isOn);
        EXPECT_EQ(view().configTextField->isEnabled(), isOn);
        EXPECT_EQ(view().configBrowseButton->isEnabled(), isOn);
    }
}

TEST_F(NewFolderTest, WithSpotlightTheDiskIsLocalAndForAllWhateverTheyWere)
{
    show();
    view().mountAsLocalDiskButton->setChecked(true);
    view().spotlightButton->click();
    for (const QCheckBox *button : {view().mountAsLocalDiskButton, view().mountForAllUsersButton}) {
        EXPECT_TRUE(button->isChecked());
        EXPECT_FALSE(button->isEnabled());
    }
    view().spotlightButton->click();
    for (const QCheckBox *button : {view().mountAsLocalDiskButton, view().mountForAllUsersButton}) {
        EXPECT_FALSE(button->isChecked());
        EXPECT_TRUE(button->isEnabled());
    }
}

TEST_F(NewFolderTest, AFlowThatFillsTheControlsSetsNothingOff)
{
    view().spotlightButton->setChecked(true);
    view().configButton->setChecked(true);
    EXPECT_FALSE(view().mountAsLocalDiskButton->isChecked());
    EXPECT_FALSE(view().configTextField->isEnabled());
}

TEST_F(NewFolderTest, TheConfigurationFileOfANewFolderNeedNotExist)
{
    show();
    view().configButton->click();
    view().configBrowseButton->click();
    QFileDialog &sheet = sheetOf(*engine->window());
    EXPECT_EQ(sheet.acceptMode(), QFileDialog::AcceptSave);
    EXPECT_FALSE(sheet.testOption(QFileDialog::ReadOnly));
    choose(sheet, path("new configuration"));
    EXPECT_EQ(view().configTextField->text(), path("new configuration"));
    EXPECT_FALSE(std::filesystem::exists(desk.desk.home() + "/new configuration"));
}

TEST_F(OpenFolderTest, ItRunsAloneWithCancelAndWithoutTheCipher)
{
    run();
    EXPECT_EQ(engine->prevButton()->text(), QStringLiteral("Cancel"));
    EXPECT_TRUE(engine->prevButton()->isEnabled());
    EXPECT_EQ(engine->nextButton()->text(), QStringLiteral("Finish"));
    const QList<const QWidget *> hidden{
        view().algorithmLabelTextField,      view().algorithmButton,
        view().blockSizeLabelTextField,      view().blockSizeTextField,
        view().blockSizeBytesLabelTextField, view().filenameEncryptionButton};
    for (const QWidget *cipherControl : hidden)
        EXPECT_FALSE(cipherControl->isVisible()) << cipherControl->objectName().toStdString();
    EXPECT_TRUE(view().labelTextField->isVisible());
    EXPECT_TRUE(view().automountButton->isVisible());
}

TEST_F(OpenFolderTest, TheOptionsStandRightBelowTheLabel)
{
    run();
    QCoreApplication::processEvents();
    const int gap = view().containerView->mapTo(page->view(), QPoint()).y() -
                    view().labelTextField->geometry().bottom();
    EXPECT_GT(gap, 0);
    EXPECT_LE(gap, view().labelTextField->fontMetrics().height());
}

TEST_F(OpenFolderTest, TheLabelIsLeftAsTheFlowFilledIt)
{
    view().labelTextField->setText(QStringLiteral("Filled"));
    run();
    EXPECT_EQ(view().labelTextField->text(), QStringLiteral("Filled"));
}

TEST_F(OpenFolderTest, CancelEndsTheRunUnfinished)
{
    run();
    goBack();
    EXPECT_FALSE(engine->finished());
    EXPECT_TRUE(engine->assistants().isEmpty());
    EXPECT_FALSE(engine->window()->isVisible());
}

TEST_F(OpenFolderTest, TheHiddenBlockSizeIsStillChecked)
{
    run();
    view().blockSizeTextField->setText(QStringLiteral("4097"));
    EXPECT_EQ(nextTells(), oddBlocks);
}

TEST_F(OpenFolderTest, AFolderThatIsOpenedNeedsALabelOfItsOwn)
{
    listed(QStringLiteral("Private"));
    run();
    view().labelTextField->setText(QStringLiteral("Private"));
    EXPECT_EQ(nextTells(), labelTaken);
}

TEST_F(OpenFolderTest, AnEditedVolumeKeepsItsLabel)
{
    const VolumePtr volume = listed(QStringLiteral("Private"));
    page->setWorkingVolume(volume);
    run();
    view().labelTextField->setText(QStringLiteral("Private"));
    EXPECT_EQ(nextTells(), QString());
}

TEST_F(OpenFolderTest, AnEditedVolumeTakesNoOthersLabel)
{
    page->setWorkingVolume(listed(QStringLiteral("Private")));
    listed(QStringLiteral("Other"));
    run();
    view().labelTextField->setText(QStringLiteral("Other"));
    EXPECT_EQ(nextTells(), labelTaken);
}

TEST_F(OpenFolderTest, TheConfigurationFileIsOneThatExists)
{
    writeFile(desk.desk.home() + "/mine.xml", "configuration");
    run();
    view().configButton->click();
    view().configBrowseButton->click();
    QFileDialog &sheet = sheetOf(*engine->window());
    EXPECT_EQ(sheet.acceptMode(), QFileDialog::AcceptOpen);
    EXPECT_EQ(sheet.fileMode(), QFileDialog::ExistingFile);
    EXPECT_TRUE(sheet.testOption(QFileDialog::ReadOnly)); // no new folders
    choose(sheet, path("mine.xml"));
    EXPECT_EQ(view().configTextField->text(), path("mine.xml"));
}

TEST_F(OpenFolderTest, ACancelledPanelLeavesTheField)
{
    run();
    view().configButton->click();
    view().configTextField->setText(QStringLiteral("/before"));
    view().configBrowseButton->click();
    cancel(sheetOf(*engine->window()));
    EXPECT_EQ(view().configTextField->text(), QStringLiteral("/before"));
}

} // namespace
} // namespace nimbrel::test
