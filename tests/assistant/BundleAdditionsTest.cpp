#include "assistant/BundleAdditions.h"

#include "assistant/NibLoading.h"
#include "support/FakeAlerts.h"
#include "support/Files.h"
#include "support/Messages.h"
#include "support/PrivateDesktop.h"

#include <QFileInfo>
#include <QWidget>

#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

TEST(BundleAdditionsTest, AWindowThatIsThereIsLoaded)
{
    nibs::add(QStringLiteral("There"), [] { return std::make_unique<QWidget>(); });
    EXPECT_NE(bundle::loadNibNamedOrQuit(QStringLiteral("There")), nullptr);
    EXPECT_NE(bundle::safeLoadNibNamed(QStringLiteral("There")), nullptr);
}

TEST(BundleAdditionsTest, AMissingWindowIsToldToTheUserAndEndsTheApplication)
{
    const auto child = [] {
        FakeAlerts alerts;
        alerts.whileShown = [](const Alert &alert) {
            std::fprintf(stderr, "%s|%s|%s|%d", qUtf8Printable(alert.messageText),
                         qUtf8Printable(alert.informativeText),
                         qUtf8Printable(alert.buttons.join(QLatin1Char(','))),
                         alert.isCaution ? 1 : 0);
        };
        bundle::setTerminationHandler([] { std::fputs("|saved", stderr); });
        (void)bundle::loadNibNamedOrQuit(QStringLiteral("Gone"));
        std::fputs("|went on", stderr);
    };
    EXPECT_EXIT(child(), ::testing::ExitedWithCode(1),
                "^Missing Resource\\|Couldn't load the file Gone.nib!\n\nThis can happen if you "
                "move Pellamere after running it.\\|OK\\|1\\|saved$");
}

TEST(BundleAdditionsTest, AMissingWindowIsNoWindowToWhomAsksSafely)
{
    EXPECT_EQ(bundle::safeLoadNibNamed(QStringLiteral("Gone")), nullptr);
}

TEST(BundleAdditionsTest, TheApplicationLiesWhereItsProgramIs)
{
    const auto folder = bundle::locationResistantBundle();
    ASSERT_TRUE(folder);
    EXPECT_TRUE(QFileInfo::exists(*folder + QStringLiteral("/nimbrel_assistant_tests")));
}

TEST(BundleAdditionsTest, AnApplicationIsFoundByItsIdentifier)
{
    const PrivateDesktop desktop({.bus = false, .keyring = false});
    std::filesystem::create_directories(desktop.data() + "/applications");
    writeFile(desktop.data() + "/applications/com.example.Editor.desktop",
              "[Desktop Entry]\nType=Application\nName=Editor\nExec=true\n");
    const auto entry = bundle::locateAppBundleWithIdentifier(QStringLiteral("com.example.Editor"));
    ASSERT_TRUE(entry);
    EXPECT_TRUE(entry->endsWith(QStringLiteral("/applications/com.example.Editor.desktop")));
}

TEST(BundleAdditionsTest, AnApplicationThatIsNotInstalledIsLogged)
{
    const Messages log;
    EXPECT_FALSE(bundle::locateAppBundleWithIdentifier(QStringLiteral("com.example.None")));
    EXPECT_EQ(
        log.texts(),
        QStringList{QStringLiteral(
            "ERROR (+[NSBundle(TEAdditions) locateAppBundleWithIdentifier:]:28): couldn't get "
            "URL for app with bundleID: com.example.None")});
}

} // namespace
} // namespace nimbrel::test
