#include "app/NBAppDelegate.h"

#include "app/Util.h"
#include "application/ApplicationDesk.h"
#include "platform/LoginItem.h"

#include <QAbstractItemView>

#include <filesystem>

namespace nimbrel::test {

namespace {

class NBAppDelegateTest : public ::testing::Test, public ApplicationDesk
{
protected:
    [[nodiscard]] QVariant stored(const QString &key) { return desk.preferences.value(key); }
    void startInAdvancedMode()
    {
        desk.preferences.setValue(preferencesKey::advanced, true);
        start();
    }
    void startAt(const QString &version, bool atLogin)
    {
        facts.systemVersion = version;
        facts.wasLaunchedAsLoginItem = atLogin;
        startInAdvancedMode();
    }
    // Of the next welcome: which windows came up.
    void startAndCancelWelcome()
    {
        Person person({[this](QWidget &window) {
            welcomed = window.windowTitle();
            window.close();
        }});
        start();
        EXPECT_TRUE(person.steps.empty()) << "nobody was welcomed";
    }

    QString welcomed;
};

} // namespace

TEST_F(NBAppDelegateTest, AFirstStartStartsWithTheSessionFromNowOnAndWelcomesTheUser)
{
    startAndCancelWelcome();
    EXPECT_EQ(welcomed, QStringLiteral("Nimbrel"));
    EXPECT_TRUE(delegate->firstRun());
    EXPECT_TRUE(Util::willAutostart());
    EXPECT_TRUE(stored(preferencesKey::firstRunDate).isValid());
}

TEST_F(NBAppDelegateTest, AFirstStartMountsNothing)
{
    startAndCancelWelcome();
    EXPECT_EQ(timesWoken, 0);
    EXPECT_TRUE(controller().volumes().isEmpty());
}

TEST_F(NBAppDelegateTest, ALaterStartWithoutVolumesInAdvancedModeWelcomesNobody)
{
    desk.preferences.setValue(preferencesKey::firstRunDate, QStringLiteral("2026-01-01T00:00:00Z"));
    startInAdvancedMode(); // a welcome would block for ever
    EXPECT_FALSE(delegate->firstRun());
    EXPECT_TRUE(delegate->advancedMode());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(NBAppDelegateTest, ALaterStartWithoutVolumesInSimpleModeWelcomesAgain)
{
    desk.preferences.setValue(preferencesKey::firstRunDate, QStringLiteral("2026-01-01T00:00:00Z"));
    startAndCancelWelcome();
    EXPECT_FALSE(delegate->firstRun());
    EXPECT_EQ(welcomed, QStringLiteral("Nimbrel"));
}

TEST_F(NBAppDelegateTest, TheAutostartThatSomebodySwitchedOffStaysOff)
{
    desk.preferences.setValue(preferencesKey::firstRunDate, QStringLiteral("2026-01-01T00:00:00Z"));
    startInAdvancedMode();
    EXPECT_FALSE(Util::willAutostart());
}

TEST_F(NBAppDelegateTest, ACancelledWelcomeComesBackThoughTheNextStartIsNoFirstOne)
{
    startAndCancelWelcome();
    const QVariant firstDate = stored(preferencesKey::firstRunDate);
    end();
    welcomed.clear();
    startAndCancelWelcome();
    EXPECT_EQ(welcomed, QStringLiteral("Nimbrel"));
    EXPECT_FALSE(delegate->firstRun());
    EXPECT_EQ(stored(preferencesKey::firstRunDate), firstDate);
}

TEST_F(NBAppDelegateTest, TheFileBrowserIsWokenOnNewerSystemsAtTheSessionsStartAlone)
{
    struct Case
    {
        const char *version;
        bool atLogin;
        int times;
    };
    for (const Case &each :
         {Case{"10.7.5", true, 0}, Case{"10.8", true, 0}, Case{"10.8.0", true, 1},
          Case{"10.8.0", false, 0}, Case{"10.10.0", true, 1}, Case{"6.1.0", true, 0}}) {
        timesWoken = 0;
        startAt(QString::fromLatin1(each.version), each.atLogin);
        EXPECT_EQ(timesWoken, each.times) << each.version << each.atLogin;
        end();
    }
}

TEST_F(NBAppDelegateTest, TheServicesProviderIsThereAfterTheWelcomeToo)
{
    startAndCancelWelcome();
    EXPECT_NE(delegate->servicesProvider(), nullptr);
    end();
    startInAdvancedMode();
    EXPECT_NE(delegate->servicesProvider(), nullptr);
}

TEST_F(NBAppDelegateTest, WhatIsToBeMountedAtStartIsMounted)
{
    store({folder("One.nmc", QStringLiteral("One"), true),
           folder("Two.nmc", QStringLiteral("Two"), false)});
    desk.preferences.setValue(preferencesKey::advanced, true);
    make();
    delegate->applicationWillFinishLaunching();
    controller().volumes()[0]->setPassphrase(SecureBuffer::copyOf("secret"));
    delegate->applicationDidFinishLaunching();
    EXPECT_TRUE(eventLoopUntil([this] { return controller().volumes()[0]->isMounted(); }));
    EXPECT_FALSE(controller().volumes()[1]->isMounted());
    EXPECT_EQ(statusItem().image(), QStringLiteral("decrypted"));
}

TEST_F(NBAppDelegateTest, TheEndSavesTheListAndStartsEachUnmount)
{
    startInAdvancedMode();
    const VolumePtr volume = folder("One.nmc", QStringLiteral("One"));
    ASSERT_TRUE(desk.mount(volume));
    controller().volumes().append(volume);
    delegate->applicationWillTerminate();
    EXPECT_TRUE(stored(preferencesKey::volumes).isValid());
    EXPECT_TRUE(eventLoopUntil([&] { return !volume->isMounted(); }));
    EXPECT_TRUE(desk.hasNoMounts());
}

TEST_F(NBAppDelegateTest, LinksOnTheDesktopAreTheDefaultUnlessSomebodyChoseOtherwise)
{
    startInAdvancedMode();
    EXPECT_TRUE(desk.preferences.boolValue(preferencesKey::createAliases));
    end();
    desk.preferences.setValue(preferencesKey::createAliases, false);
    startInAdvancedMode();
    EXPECT_FALSE(desk.preferences.boolValue(preferencesKey::createAliases));
}

TEST_F(NBAppDelegateTest, TheProfileIsSentAtEveryStart)
{
    desk.preferences.setValue(preferencesKey::sendProfileInfo, false);
    startInAdvancedMode();
    EXPECT_TRUE(desk.preferences.boolValue(preferencesKey::sendProfileInfo));
}

TEST_F(NBAppDelegateTest, TheRedPillWritesTheBanner)
{
    const auto log = std::filesystem::path(desk.desktop().state()) / "Nimbrel/Nimbrel.log";
    startInAdvancedMode();
    end();
    EXPECT_FALSE(std::filesystem::exists(log));
    desk.preferences.setValue(preferencesKey::redPill, true);
    startInAdvancedMode();
    end();
    EXPECT_THAT(readFile(log.string()), ::testing::HasSubstr("Nimbrel "));
}

// The store holds an empty list after an upgrade. Without the save at the start a run that is
// killed would leave it so.
TEST_F(NBAppDelegateTest, AnUpgradedListIsInTheStoreFromTheStartOn)
{
    KeyedRecord record(QStringLiteral("Volume"));
    record.encodeObject(QStringLiteral("root"), desk.path("Old.nmc"));
    record.encodeObject(QStringLiteral("label"), QStringLiteral("Old"));
    desk.preferences.setValue(preferencesKey::volumes, archivedData({record}));
    desk.preferences.setValue(preferencesKey::firstRunDate, QStringLiteral("2026-01-01T00:00:00Z"));
    startInAdvancedMode();
    ASSERT_EQ(controller().volumes().size(), 1);
    const auto kept = unarchivedRecords(stored(preferencesKey::volumes).toByteArray());
    ASSERT_TRUE(std::holds_alternative<QList<KeyedRecord>>(kept));
    EXPECT_EQ(std::get<QList<KeyedRecord>>(kept).size(), 1);
}

TEST_F(NBAppDelegateTest, AFolderThatIsHandedOverIsInTheWindowsListAtOnce)
{
    startInAdvancedMode();
    statusItem().openPreferencesWindow();
    const auto *list = statusItem().vmWindowController().window()->findChild<QAbstractItemView *>(
        QStringLiteral("tableView"));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->model()->rowCount(), 0);
    const VolumePtr made = folder("Work.nmc", QStringLiteral("Work"));
    Person person({next, closeWindow}); // the options; the password is cancelled
    (void)delegate->application(made->path());
    EXPECT_EQ(list->model()->rowCount(), 1);
    EXPECT_TRUE(eventLoopUntil([&] { return person.steps.empty(); }));
}

TEST_F(NBAppDelegateTest, AFolderThatIsHandedOverIsKnownUntilTheManagerHasTakenIt)
{
    startInAdvancedMode();
    const QString path = desk.makeFolder("Plain");
    Person person({closeWindow});
    EXPECT_TRUE(delegate->application(path));
    EXPECT_TRUE(delegate->openFile().isNull());
    EXPECT_TRUE(person.steps.empty()) << "no options were asked for";
    EXPECT_TRUE(controller().volumes().isEmpty());
}

} // namespace nimbrel::test
