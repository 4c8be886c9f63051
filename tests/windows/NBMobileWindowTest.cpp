#include "windows/NBMobileWindowController.h"

#include "assistants/AssistantsDesk.h"
#include "windows/views/MobileWindow.h"

#include <QLabel>
#include <QTest>

namespace nimbrel::test {
namespace {

const QUrl appStore(QStringLiteral("https://apps.example.org/nimbrel"));
const QUrl googlePlay(QStringLiteral("https://play.example.org/nimbrel"));

class NBMobileWindowTest : public ::testing::Test
{
protected:
    NBMobileWindowTest() { parent.show(); }

    void run(const MobileAddresses &addresses, const Steps &steps)
    {
        Person person(steps);
        NBMobileWindowController controller(workspace, addresses);
        controller.runModal(&parent);
        EXPECT_TRUE(person.steps.empty());
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr); // the parent reacts again
    }

    Watchdog watchdog;
    RecordedWorkspace workspace;
    QWidget parent;
};

TEST_F(NBMobileWindowTest, TheLinksOpenTheStoresAndTheWindowStays)
{
    run({.appStore = appStore, .googlePlay = googlePlay},
        {[](QWidget &window) {
             EXPECT_EQ(window.objectName(), QStringLiteral("NBMobileWindow"));
             EXPECT_TRUE(control<QLabel>(window, "reasonTextField").isHidden());
         },
         press("downloadFromAppStoreButton"), press("downloadFromGooglePlayButton"),
         press("closeButton")});
    EXPECT_EQ(workspace.urls, (QList<QUrl>{appStore, googlePlay}));
}

TEST_F(NBMobileWindowTest, EveryWayOutEndsTheModalRun)
{
    const MobileAddresses addresses{.appStore = appStore, .googlePlay = googlePlay};
    run(addresses, {closeWindow});
    run(addresses, {[](QWidget &window) { QTest::keyClick(&window, Qt::Key_Escape); }});
    run(addresses, {[](QWidget &window) { QTest::keyClick(&window, Qt::Key_Return); }});
    EXPECT_TRUE(workspace.urls.isEmpty());
}

TEST_F(NBMobileWindowTest, AStoreWithoutAnAddressIsDisabledAndTheReasonIsGiven)
{
    const auto states = [](bool hasAppStore, bool hasGooglePlay, const char *reason) {
        return [=](QWidget &window) {
            EXPECT_EQ(control<QPushButton>(window, "downloadFromAppStoreButton").isEnabled(),
                      hasAppStore);
            EXPECT_EQ(control<QPushButton>(window, "downloadFromGooglePlayButton").isEnabled(),
                      hasGooglePlay);
            const QLabel &text = control<QLabel>(window, "reasonTextField");
            EXPECT_TRUE(text.isVisible());
            EXPECT_TRUE(text.text().contains(QLatin1String(reason))) << coreText(text.text());
        };
    };
    run({}, {states(false, false, "no addresses"), closeWindow});
    run({.appStore = appStore}, {states(true, false, "Google Play"), closeWindow});
    run({.googlePlay = googlePlay}, {states(false, true, "App Store"), closeWindow});
    const QUrl noPage(QStringLiteral("file:///etc/passwd"));
    run({.appStore = noPage, .googlePlay = googlePlay},
        {states(false, true, "App Store"), closeWindow});
}

TEST_F(NBMobileWindowTest, TheWindowMayGoWithItsParent)
{
    auto owner = std::make_unique<QWidget>();
    owner->show();
    Person person({[&](QWidget &) { owner.reset(); }});
    NBMobileWindowController controller(workspace, {});
    controller.runModal(owner.get());
    EXPECT_TRUE(person.steps.empty());
}

} // namespace
} // namespace nimbrel::test
