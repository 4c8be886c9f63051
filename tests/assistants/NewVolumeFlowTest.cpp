// A new encrypted folder by the windows: what the person does in them reaches volume and disk.
#include "assistants/flows/NewVolume.h"

#include "assistants/AssistantsDesk.h"
#include "assistants/widgets/PathControl.h"
#include "assistants/widgets/PopUpButton.h"
#include "config/NBNimbrelFSPreferences.h"
#include "volume/StoredList.h"

#include <QLabel>

#include <filesystem>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

const QString password = QStringLiteral("a new Paßwort");

Steps secured(bool remember = true)
{
    return newPassword(password, remember);
}

Person::Step selectAlgorithm(const QString &title)
{
    return [title](QWidget &window) {
        auto &button = control<QComboBox>(window, "algorithmButton");
        if (button.findText(title) < 0)
            button.addItem(title);
        button.setCurrentText(title);
    };
}

class NewVolumeFlowTest : public ::testing::Test
{
protected:
    NewVolumeFlowTest() { desk.desk.makeFolder("Documents"); }

    std::optional<NBNewVolumeSettings> ask(Steps steps)
    {
        Person person(std::move(steps));
        std::optional<NBNewVolumeSettings> settings = askForNewVolume(desk.application);
        EXPECT_TRUE(person.steps.empty());
        return settings;
    }
    void useAdvancedMode() { desk.application.isAdvanced = true; }

    AssistantsDesk desk;
    Watchdog watchdog;
};

TEST_F(NewVolumeFlowTest, InSimpleModeThePasswordIsTheLastStepAndTheRestIsFixed)
{
    const auto settings =
        ask(located(QStringLiteral("Taxes")) + Steps{[](QWidget &window) {
                EXPECT_EQ(window.windowTitle(), QStringLiteral("Nimbrel Assistant"));
            }} +
            secured(false));
    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->path, desk.path("Documents/Taxes.nmc"));
    EXPECT_EQ(settings->passphrase.text(), coreText(password));
    EXPECT_FALSE(settings->storePassphrase);
    EXPECT_EQ(settings->label, QStringLiteral("Nimbrel"));
    EXPECT_EQ(settings->keySize, 256);
    EXPECT_EQ(settings->blockSize, 4096);
    EXPECT_TRUE(settings->encodeFilenames);
    EXPECT_TRUE(settings->automount);
    EXPECT_FALSE(settings->spotlight);
    EXPECT_FALSE(settings->local);
    EXPECT_FALSE(settings->allowAll);
    EXPECT_TRUE(settings->configPath.isNull());
}

TEST_F(NewVolumeFlowTest, InAdvancedModeEveryControlIsTaken)
{
    useAdvancedMode();
    const auto settings = ask(
        located(QStringLiteral("Taxes")) + secured() +
        Steps{type("labelTextField", QStringLiteral("Steuern")),
              selectAlgorithm(QStringLiteral("AES-192")),
              type("blockSizeTextField", QStringLiteral("1024")),
              check("filenameEncryptionButton", false), check("automountButton", false),
              check("mountAsLocalDiskButton", true), check("mountForAllUsersButton", true),
              check("configButton", true), type("configTextField", desk.path("Other.xml")), next});
    ASSERT_TRUE(settings);
    EXPECT_TRUE(settings->storePassphrase);
    EXPECT_EQ(settings->label, QStringLiteral("Steuern"));
    EXPECT_EQ(settings->keySize, 192);
    EXPECT_EQ(settings->blockSize, 1024);
    EXPECT_FALSE(settings->encodeFilenames);
    EXPECT_FALSE(settings->automount);
    EXPECT_FALSE(settings->spotlight);
    EXPECT_TRUE(settings->local);
    EXPECT_TRUE(settings->allowAll);
    EXPECT_EQ(settings->configPath, desk.path("Other.xml"));
}

TEST_F(NewVolumeFlowTest, TheKeySizeFollowsFromTheTitleAndIs256ForAnyOther)
{
    useAdvancedMode();
    const std::vector<std::pair<const char *, qint64>> titles{
        {"AES-128", 128}, {"AES-192", 192}, {"AES-256", 256}, {"Another", 256}};
    for (const auto &[title, bits] : titles) {
        const auto settings = ask(located(QStringLiteral("Taxes")) + secured() +
                                  Steps{selectAlgorithm(QString::fromLatin1(title)), next});
        ASSERT_TRUE(settings);
        EXPECT_EQ(settings->keySize, bits) << title;
    }
}

TEST_F(NewVolumeFlowTest, AnotherConfigurationCountsOnlyWhileItsBoxIsOn)
{
    useAdvancedMode();
    const auto settings =
        ask(located(QStringLiteral("Taxes")) + secured() +
            Steps{check("configButton", true), type("configTextField", desk.path("Other.xml")),
                  check("configButton", false), next});
    ASSERT_TRUE(settings);
    EXPECT_TRUE(settings->configPath.isNull());
}

TEST_F(NewVolumeFlowTest, ClosingTheWindowAtAnyStepGivesNothing)
{
    useAdvancedMode();
    EXPECT_FALSE(ask({closeWindow}));
    EXPECT_FALSE(ask(located(QStringLiteral("Taxes")) + Steps{closeWindow}));
    EXPECT_FALSE(ask(located(QStringLiteral("Taxes")) + secured() + Steps{closeWindow}));
    EXPECT_TRUE(fs::is_empty(coreText(desk.path("Documents"))));
    EXPECT_EQ(desk.alertTexts(), QStringList());
}

TEST_F(NewVolumeFlowTest, PathAndPasswordAreThoseOfTheEndAfterGoingBackAndForward)
{
    const auto settings = ask(located(QStringLiteral("First")) + Steps{previous} +
                              located(QStringLiteral("Second")) + secured());
    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->path, desk.path("Documents/Second.nmc"));
}

TEST_F(NewVolumeFlowTest, TheSuccessPageSaysWhetherTheDiskIsToBeShown)
{
    const auto show = [](Steps steps) {
        const Person person(std::move(steps));
        return showSuccessPage(QStringLiteral("/nowhere/.encfs6.xml"), QStringLiteral("A Title"));
    };
    EXPECT_TRUE(
        show({[](QWidget &window) { EXPECT_EQ(window.windowTitle(), QStringLiteral("A Title")); },
              check("openVolumeButton", true), next}));
    EXPECT_FALSE(show({check("openVolumeButton", false), next}));
    EXPECT_FALSE(show({check("openVolumeButton", true), closeWindow}));
}

class NewVolumeOnDiskTest : public NewVolumeFlowTest
{
protected:
    void SetUp() override { NIMBREL_NEED_MOUNTS(); }

    // Goes all the way, and waits for the disk.
    VolumePtr make(Steps steps)
    {
        Person person(std::move(steps));
        desk.controller().newVolume();
        EXPECT_TRUE(person.steps.empty());
        VolumePtr volume = desk.controller().volumes().value(0);
        EXPECT_TRUE(volume && eventLoopUntil([&] { return volume->isMounted(); }));
        return volume;
    }
    static std::int64_t configured(const VolumePtr &volume, std::string_view key)
    {
        NBPreferencesError error;
        const auto read =
            NBNimbrelFSPreferences().preferencesWithURL(coreText(volume->configPath()), &error);
        return read ? read->integer(key).value_or(-1) : -2;
    }
};

TEST_F(NewVolumeOnDiskTest, InSimpleModeTheFolderIsMadeMountedListedAndItsDiskShown)
{
    const VolumePtr volume =
        make(located(QStringLiteral("Taxes")) + secured() +
             Steps{[](QWidget &window) {
                       EXPECT_EQ(window.windowTitle(), QStringLiteral("Nimbrel Assistant"));
                       EXPECT_EQ(control<QLabel>(window, "stepTitle").text(),
                                 QStringLiteral("Congratulations!"));
                   },
                   check("openVolumeButton", true), next});
    ASSERT_NE(volume, nullptr);
    EXPECT_EQ(volume->label(), QStringLiteral("Nimbrel"));
    EXPECT_EQ(volume->configPath(), desk.path("Documents/Taxes.nmc/.encfs6.xml"));
    EXPECT_EQ(configured(volume, preferenceKey::keySize), 256);
    EXPECT_EQ(configured(volume, preferenceKey::blockSize), 4096);
    EXPECT_EQ(storedLabels(), QStringList{QStringLiteral("Nimbrel")});
    EXPECT_EQ(desk.desk.workspace.selected,
              QStringList{volume->mountPoint() + QStringLiteral("/Getting Started.pdf")});
    EXPECT_EQ(desk.alertTexts(), QStringList());
}

TEST_F(NewVolumeOnDiskTest, InAdvancedModeTheLabelAndTheSettingsReachVolumeAndConfiguration)
{
    useAdvancedMode();
    const VolumePtr volume = make(located(QStringLiteral("Taxes")) + secured(false) +
                                  Steps{type("labelTextField", QStringLiteral("Steuern")),
                                        selectAlgorithm(QStringLiteral("AES-128")),
                                        type("blockSizeTextField", QStringLiteral("512")),
                                        check("automountButton", false), next, closeWindow});
    ASSERT_NE(volume, nullptr);
    EXPECT_EQ(volume->label(), QStringLiteral("Steuern"));
    EXPECT_EQ(volume->mountPoint(), desk.path("Volumes/Steuern"));
    EXPECT_EQ(configured(volume, preferenceKey::keySize), 128);
    EXPECT_EQ(configured(volume, preferenceKey::blockSize), 512);
    EXPECT_FALSE(volume->automount());
    EXPECT_FALSE(volume->storePassphrase());
    EXPECT_TRUE(desk.desk.workspace.selected.isEmpty());
}

TEST_F(NewVolumeOnDiskTest, IndexedVolumeIsLocalAndForAllUsersWhateverTheirBoxesSay)
{
    useAdvancedMode();
    Person person(located(QStringLiteral("Taxes")) + secured() +
                  Steps{check("spotlightButton", true), check("mountAsLocalDiskButton", false),
                        check("mountForAllUsersButton", false), next, closeWindow});
    desk.controller().newVolume();
    const VolumePtr volume = desk.controller().lastVolume();
    ASSERT_NE(volume, nullptr);
    EXPECT_TRUE(volume->spotlight());
    EXPECT_TRUE(volume->isLocal());
    EXPECT_TRUE(volume->allowsAll());
    EXPECT_TRUE(eventLoopUntil([&] { return !volume->isBusy(); })); // may be refused to a user
}

TEST_F(NewVolumeOnDiskTest, WithoutALocationThePageIsNotLeft)
{
    Person person(Steps{type("folderNameTextField", QStringLiteral("Taxes")), [](QWidget &window) {
                            QComboBox &popUp = control<PopUpButton>(window, "foldersPopUpButton");
                            popUp.setCurrentIndex(popUp.count() - 1); // "Other…", cancelled
                            control<QLineEdit>(window, "folderNameTextField")
                                .setText(QStringLiteral("Taxes again"));
                            control<QPushButton>(window, "nextButton").click();
                            window.close();
                        }});
    desk.controller().newVolume();
    EXPECT_TRUE(person.steps.empty());
    EXPECT_EQ(desk.alertTexts(),
              QStringList{QStringLiteral("Please choose a location for the folder.")});
    EXPECT_TRUE(desk.controller().volumes().isEmpty());
}

} // namespace
} // namespace nimbrel::test
