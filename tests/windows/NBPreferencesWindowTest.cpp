#include "windows/NBPreferencesWindowController.h"

#include "assistants/AssistantsDesk.h"
#include "platform/FileManagerActions.h"
#include "platform/SystemFacts.h"
#include "windows/UpdateChecks.h"
#include "windows/views/PreferencesWindow.h"

#include <QLabel>
#include <QLocale>
#include <QTest>

namespace nimbrel::test {
namespace {

class PresetUpdateChecks final : public UpdateChecks
{
public:
    [[nodiscard]] QString host() const override { return address; }
    [[nodiscard]] bool isChecking() const override { return isBusy; }
    [[nodiscard]] QDateTime lastUpdateCheckDate() const override { return date; }
    void checkForUpdates() override
    {
        ++checks;
        isBusy = true;
        Q_EMIT changed();
    }

    QString address = QStringLiteral("updates.example.org");
    bool isBusy = false;
    QDateTime date;
    int checks = 0;
};

class NBPreferencesWindowTest : public ::testing::Test
{
protected:
    NBPreferencesWindowTest()
    {
        desk.desk.preferences.registerDefaults({{preferencesKey::createAliases, true}});
        parent.show();
    }

    void open()
    {
        controller = std::make_unique<NBPreferencesWindowController>(services);
        controller->beginSheetModalForWindow(parent, [this](QWidget &sheet) {
            EXPECT_EQ(sheet.objectName(), QStringLiteral("NBPreferencesWindow"));
            ++ends;
        });
    }
    [[nodiscard]] PreferencesWindow &window() const { return *controller->window(); }
    [[nodiscard]] QString lastCheck() const { return window().lastUpdateCheckTextField->text(); }
    [[nodiscard]] const Preferences &preferences() const { return desk.desk.preferences; }
    // Nothing can be written below it.
    void block(const std::string &folder) const
    {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(std::filesystem::path(folder).parent_path());
        writeFile(folder, "no folder");
    }

    AssistantsDesk desk;
    PresetUpdateChecks updates;
    WindowServices services{desk.application, desk.services, updates};
    QWidget parent;
    std::unique_ptr<NBPreferencesWindowController> controller;
    int ends = 0;
};

TEST_F(NBPreferencesWindowTest, TheSheetShowsWhatIsSet)
{
    open();
    EXPECT_EQ(window().windowModality(), Qt::WindowModal);
    EXPECT_FALSE(window().autostartButton->isChecked());
    EXPECT_TRUE(window().createAliasesButton->isChecked()); // the registered default
    EXPECT_FALSE(window().addVolumePrefixButton->isChecked());
    EXPECT_TRUE(window().closeButton->isDefault());
    controller.reset();
    desk.desk.preferences.setValue(preferencesKey::createAliases, false);
    desk.desk.preferences.setValue(preferencesKey::volumePrefix, true);
    ASSERT_TRUE(Util::setAutostart(true));
    open();
    EXPECT_TRUE(window().autostartButton->isChecked());
    EXPECT_FALSE(window().createAliasesButton->isChecked());
    EXPECT_TRUE(window().addVolumePrefixButton->isChecked());
}

TEST_F(NBPreferencesWindowTest, BeforeTheFirstCheckTheLineSaysSo)
{
    open();
    EXPECT_EQ(lastCheck(), QStringLiteral("Never checked for updates yet!"));
}

TEST_F(NBPreferencesWindowTest, TheLastCheckIsShownWithItsFullDateAndWithoutTheTime)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QStringLiteral("en_US")));
    updates.date = QDateTime({2012, 10, 26}, {23, 59});
    open();
    EXPECT_EQ(lastCheck(), QStringLiteral("Last check was on Friday, October 26, 2012"));
    QLocale::setDefault(before);
}

TEST_F(NBPreferencesWindowTest, NothingTakesEffectBeforeTheSheetIsClosed)
{
    open();
    window().autostartButton->setChecked(true);
    window().createAliasesButton->setChecked(false);
    window().addVolumePrefixButton->setChecked(true);
    EXPECT_FALSE(Util::willAutostart());
    EXPECT_TRUE(preferences().boolValue(preferencesKey::createAliases));
    EXPECT_FALSE(preferences().boolValue(preferencesKey::volumePrefix));
    controller->closeWindow();
    EXPECT_TRUE(Util::willAutostart());
    EXPECT_FALSE(preferences().boolValue(preferencesKey::createAliases));
    EXPECT_TRUE(preferences().boolValue(preferencesKey::volumePrefix));
    EXPECT_EQ(controller->window(), nullptr);
    EXPECT_EQ(ends, 1);
    EXPECT_TRUE(desk.desk.alerts.shown.empty());
}

TEST_F(NBPreferencesWindowTest, EveryWayOutApplies)
{
    const std::vector<std::function<void(PreferencesWindow &)>> ways{
        [](PreferencesWindow &sheet) { QTest::keyClick(&sheet, Qt::Key_Escape); },
        [](PreferencesWindow &sheet) { QTest::keyClick(&sheet, Qt::Key_Return); },
        [](PreferencesWindow &sheet) { sheet.close(); },
        [](PreferencesWindow &sheet) { sheet.closeButton->click(); }};
    bool wanted = false;
    for (const auto &wayOut : ways) {
        wanted = !wanted;
        open();
        window().addVolumePrefixButton->setChecked(wanted);
        const QPointer<PreferencesWindow> sheet = &window();
        wayOut(*sheet);
        EXPECT_EQ(preferences().boolValue(preferencesKey::volumePrefix), wanted);
        EXPECT_EQ(controller->window(), nullptr);
        EXPECT_FALSE(sheet && sheet->isVisible());
    }
    EXPECT_EQ(ends, 4);
}

TEST_F(NBPreferencesWindowTest, ClosingWithNothingChangedWritesTheSameValuesAgain)
{
    open();
    controller->closeWindow();
    EXPECT_EQ(preferences().value(preferencesKey::createAliases), QVariant(true));
    EXPECT_EQ(preferences().value(preferencesKey::volumePrefix), QVariant(false));
    const SettingsFile stored; // as the next run finds them
    EXPECT_EQ(stored.boolValue(preferencesKey::createAliases), true);
    EXPECT_TRUE(stored.value(preferencesKey::volumePrefix).isValid());
    EXPECT_FALSE(Util::willAutostart());
    EXPECT_TRUE(desk.desk.alerts.shown.empty());
}

TEST_F(NBPreferencesWindowTest, AnOpenSheetDoesNotFollowChangesMadeElsewhere)
{
    open();
    desk.desk.preferences.setValue(preferencesKey::volumePrefix, true);
    Q_EMIT updates.changed();
    EXPECT_FALSE(window().addVolumePrefixButton->isChecked());
}

TEST_F(NBPreferencesWindowTest, ALoginItemThatCantBeWrittenIsTold)
{
    block(desk.desk.desktop().config() + "/autostart");
    open();
    window().autostartButton->setChecked(true);
    controller->closeWindow();
    ASSERT_EQ(desk.alertTexts(),
              QStringList{QStringLiteral("Nimbrel won't start when you log in.")});
    EXPECT_TRUE(desk.desk.alerts.shown[0].informativeText.contains(QLatin1String("autostart")));
    EXPECT_EQ(ends, 1); // the sheet goes all the same
}

TEST_F(NBPreferencesWindowTest, PreferencesThatCantBeSavedAreToldWithTheCause)
{
    open();
    block(desk.desk.desktop().config() + "/Nimbrel");
    controller->closeWindow();
    ASSERT_EQ(desk.alertTexts(), QStringList{QStringLiteral("The preferences couldn't be saved.")});
    ASSERT_TRUE(preferences().trouble().has_value());
    EXPECT_TRUE(
        desk.desk.alerts.shown[0].informativeText.startsWith(*preferences().trouble() + u'\n'));
}

TEST_F(NBPreferencesWindowTest, ASecondCloseBehindAnAlertDoesNothing)
{
    block(desk.desk.desktop().config() + "/autostart");
    open();
    window().autostartButton->setChecked(true);
    desk.desk.alerts.whileShown = [this](const Alert &) {
        EXPECT_FALSE(window().close());
        EXPECT_TRUE(window().isVisible());
    };
    controller->closeWindow();
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(desk.desk.alerts.shown.size(), 1U);
}

TEST_F(NBPreferencesWindowTest, TheMenusOfFileManagersAreChangedOnlyWhereTheBoxWas)
{
    open();
    EXPECT_FALSE(window().fileManagerActionsButton->isChecked());
    controller->closeWindow();
    EXPECT_FALSE(fileManagerActions::areInstalled(systemFacts::programPath()));
    open();
    window().fileManagerActionsButton->setChecked(true);
    EXPECT_FALSE(fileManagerActions::areInstalled(systemFacts::programPath()));
    controller->closeWindow();
    EXPECT_TRUE(fileManagerActions::areInstalled(systemFacts::programPath()));
    open();
    EXPECT_TRUE(window().fileManagerActionsButton->isChecked());
    controller->closeWindow();
    EXPECT_TRUE(fileManagerActions::areInstalled(systemFacts::programPath()));
    open();
    window().fileManagerActionsButton->setChecked(false);
    controller->closeWindow();
    EXPECT_FALSE(fileManagerActions::areInstalled(systemFacts::programPath()));
    EXPECT_TRUE(desk.desk.alerts.shown.empty());
}

TEST_F(NBPreferencesWindowTest, MenusThatCantBeChangedAreToldWithTheCause)
{
    block(desk.desk.desktop().data());
    block(desk.desk.desktop().config());
    open();
    window().fileManagerActionsButton->setChecked(true);
    controller->closeWindow();
    const QString headline = QStringLiteral("The menus of file managers couldn't be changed.");
    ASSERT_TRUE(desk.alertTexts().contains(headline));
    EXPECT_GT(desk.desk.alerts.shown.back().informativeText.indexOf(QLatin1String("\n\nPlease")),
              0);
}

TEST_F(NBPreferencesWindowTest, ACheckIsAskedForAndFollowed)
{
    open();
    EXPECT_TRUE(window().checkNowButton->isEnabled());
    window().checkNowButton->click();
    EXPECT_EQ(updates.checks, 1);
    EXPECT_FALSE(window().checkNowButton->isEnabled()); // one at a time
    updates.isBusy = false;
    updates.date = QDateTime::currentDateTime();
    Q_EMIT updates.changed();
    EXPECT_TRUE(window().checkNowButton->isEnabled());
    EXPECT_TRUE(lastCheck().startsWith(QLatin1String("Last check was on ")));
}

TEST_F(NBPreferencesWindowTest, ThePersonReadsWhatACheckTellsToWhom)
{
    open();
    const QString hint = window().updateHintTextField->text();
    for (const char *part :
         {"updates.example.org", "once a day", "version", "test versions", "digest", "first start",
          "how many", "file names are encrypted", "cloud services", "no paths", "no passwords"})
        EXPECT_TRUE(hint.contains(QLatin1String(part))) << part;
}

TEST_F(NBPreferencesWindowTest, WithoutAnAddressNothingIsEverAsked)
{
    updates.address.clear();
    open();
    EXPECT_FALSE(window().checkNowButton->isEnabled());
    EXPECT_TRUE(window().updateHintTextField->text().contains(QLatin1String("has no address")));
}

TEST_F(NBPreferencesWindowTest, AControllerThatGoesTakesTheSheetAndAppliesNothing)
{
    open();
    const QPointer<PreferencesWindow> sheet = &window();
    sheet->addVolumePrefixButton->setChecked(true);
    controller.reset();
    Q_EMIT updates.changed();
    EXPECT_FALSE(sheet && sheet->isVisible());
    EXPECT_FALSE(preferences().boolValue(preferencesKey::volumePrefix));
    EXPECT_EQ(ends, 0);
}

} // namespace
} // namespace nimbrel::test
