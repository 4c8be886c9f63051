#include "app/Requests.h"

#include "application/ApplicationDesk.h"

#include <QUrl>

namespace nimbrel::test {

namespace {

using ::testing::HasSubstr;
using Kind = ApplicationRequest::Kind;

class RequestsTest : public ::testing::Test, public ApplicationDesk
{
protected:
    RequestsTest() { start(); }
    void start()
    {
        Person person({closeWindow}); // the welcome
        ApplicationDesk::start();
        requests = std::make_unique<Requests>(*delegate);
    }
    [[nodiscard]] static QString url(const QString &path)
    {
        return QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
    }
    [[nodiscard]] bool isListed(const QString &path)
    {
        return std::ranges::any_of(controller().volumes(),
                                   [&](const VolumePtr &volume) { return volume->path() == path; });
    }

    std::unique_ptr<Requests> requests;
};

} // namespace

TEST_F(RequestsTest, ActivateShowsTheManagerWindow)
{
    requests->begin();
    requests->add({Kind::Activate, {}});
    EXPECT_TRUE(eventLoopUntil([this] {
        const QWidget *window = statusItem().vmWindowController().window();
        return window != nullptr && window->isVisible();
    }));
}

TEST_F(RequestsTest, AFolderIsOpened)
{
    const VolumePtr made = folder("My Files é.nmc", QStringLiteral("Files"));
    Person person({type("passphraseTextField", QStringLiteral("secret")), next});
    requests->begin();
    requests->add({Kind::Open, {url(made->path())}});
    EXPECT_TRUE(eventLoopUntil([&] { return isListed(made->path()); }));
    EXPECT_TRUE(eventLoopUntil([&] { return controller().lastVolume()->isMounted(); }));
}

TEST_F(RequestsTest, NothingIsTakenBeforeTheStartHasEnded)
{
    const VolumePtr made = folder("Work.nmc", QStringLiteral("Work"));
    requests->add({Kind::Open, {url(made->path())}});
    settle();
    EXPECT_FALSE(isListed(made->path()));
    Person person({closeWindow}); // the password's question
    requests->begin();
    EXPECT_TRUE(eventLoopUntil([&] { return isListed(made->path()); }));
    EXPECT_TRUE(eventLoopUntil([&] { return person.steps.empty(); }));
}

// Two assistants, one over the other, would ask about two folders at once.
TEST_F(RequestsTest, ARequestWaitsForAnOpenAssistant)
{
    const VolumePtr made = folder("Work.nmc", QStringLiteral("Work"));
    bool wasListed = true;
    Person person({[&](QWidget &window) {
                       requests->add({Kind::Open, {url(made->path())}});
                       settle();
                       wasListed = isListed(made->path());
                       window.close();
                   },
                   closeWindow});
    requests->begin();
    controller().newVolume();
    EXPECT_FALSE(wasListed);
    EXPECT_TRUE(eventLoopUntil([&] { return isListed(made->path()); }));
    EXPECT_TRUE(eventLoopUntil([&] { return person.steps.empty(); }));
}

TEST_F(RequestsTest, WhatIsNoFolderIsToldWithItsName)
{
    requests->begin();
    requests->add({Kind::Open, {url(desk.path("missing.nmc")), QStringLiteral("https://x.org/")}});
    EXPECT_TRUE(eventLoopUntil([this] { return desk.alerts.shown.size() == 2; }));
    EXPECT_THAT(coreText(desk.alerts.shown[0].informativeText), HasSubstr("missing.nmc"));
    EXPECT_THAT(coreText(desk.alerts.shown[1].informativeText), HasSubstr("https://x.org/"));
    EXPECT_TRUE(controller().volumes().isEmpty());
}

TEST_F(RequestsTest, AFileOutsideOfEveryDiskIsToldSo)
{
    requests->begin();
    requests->add({Kind::Reveal, {url(desk.path("plain.txt"))}});
    EXPECT_TRUE(eventLoopUntil([this] { return !desk.alerts.shown.empty(); }));
    EXPECT_EQ(desk.alerts.shown[0].messageText, QStringLiteral("File not found!"));
}

} // namespace nimbrel::test
