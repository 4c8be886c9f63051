#include "app/OrderlyEnd.h"

#include "application/ApplicationDesk.h"

#include <QFileInfo>
#include <QTimer>

#include <fcntl.h>

namespace nimbrel::test {

namespace {

using ::testing::HasSubstr;

class OrderlyEndTest : public ::testing::Test, public ApplicationDesk
{
protected:
    OrderlyEndTest()
    {
        desk.preferences.setValue(preferencesKey::advanced, true);
        start();
        end = std::make_unique<OrderlyEnd>(*delegate);
    }
    // The wish to exit outlives the test: no event loop would run any more.
    ~OrderlyEndTest() override
    {
        QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(); });
        QApplication::exec();
    }
    [[nodiscard]] VolumePtr addMounted(const std::string &name)
    {
        VolumePtr volume = folder(name + ".nmc", qtText(name));
        EXPECT_TRUE(desk.mount(volume));
        controller().volumes().append(volume);
        return volume;
    }
    [[nodiscard]] UniqueFd openFileOn(const NBNimbrelVolume &volume)
    {
        const std::string path = coreText(volume.mountPoint()) + "/open.txt";
        return UniqueFd(::open(path.c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600));
    }
    [[nodiscard]] bool ends() const { return end->isTerminating(); }
    [[nodiscard]] QStringList headlines() const
    {
        QStringList texts;
        for (const Alert &alert : desk.alerts.shown)
            texts.append(alert.messageText);
        return texts;
    }

    std::unique_ptr<OrderlyEnd> end;
};

const QString question = QStringLiteral("Do you really want to quit Nimbrel?");

} // namespace

TEST_F(OrderlyEndTest, QuittingUnmountsAllDisksFirst)
{
    const VolumePtr one = addMounted("One");
    const VolumePtr two = addMounted("Two");
    end->quit();
    EXPECT_FALSE(ends());
    EXPECT_TRUE(eventLoopUntil([this] { return ends(); }));
    EXPECT_TRUE(desk.hasNoMounts());
    EXPECT_EQ(headlines(), QStringList());
}

TEST_F(OrderlyEndTest, QuittingWithoutDisksEndsAtOnce)
{
    end->quit();
    EXPECT_TRUE(eventLoopUntil([this] { return ends(); }));
}

// Without the guard the process ends right after the unmount was requested, and the disk goes from
// under the open file.
TEST_F(OrderlyEndTest, ADiskInUseIsToldAndKeepsTheProgramRunning)
{
    const VolumePtr volume = addMounted("Work");
    const UniqueFd file = openFileOn(*volume);
    ASSERT_TRUE(file);
    desk.alerts.answers = {1, 1}; // OK, then "Cancel"
    end->quit();
    EXPECT_TRUE(eventLoopUntil([this] { return headlines().contains(question); }));
    EXPECT_FALSE(ends());
    EXPECT_TRUE(volume->isMounted());
    EXPECT_EQ(::write(file.get(), "safe", 4), 4);
    EXPECT_THAT(coreText(desk.alerts.shown.back().informativeText), HasSubstr("Work"));
    EXPECT_EQ(desk.alerts.shown.back().buttons,
              (QStringList{QStringLiteral("Cancel"), QStringLiteral("Quit")}));
}

TEST_F(OrderlyEndTest, AfterACancelOneCanQuitAgain)
{
    const VolumePtr volume = addMounted("Work");
    UniqueFd file = openFileOn(*volume);
    desk.alerts.answers = {1, 1};
    end->quit();
    ASSERT_TRUE(eventLoopUntil([this] { return headlines().contains(question); }));
    file = UniqueFd();
    end->quit();
    EXPECT_TRUE(eventLoopUntil([this] { return ends(); }));
    EXPECT_TRUE(desk.hasNoMounts());
}

TEST_F(OrderlyEndTest, WhoInsistsQuitsOverADiskInUse)
{
    const VolumePtr volume = addMounted("Work");
    const UniqueFd file = openFileOn(*volume);
    desk.alerts.answers = {1, 0}; // OK, then "Quit"
    end->quit();
    EXPECT_TRUE(eventLoopUntil([this] { return ends(); }));
}

TEST_F(OrderlyEndTest, TheSessionsEndAsksNobody)
{
    const VolumePtr volume = addMounted("Work");
    const UniqueFd file = openFileOn(*volume);
    end->terminate();
    EXPECT_TRUE(ends());
    end->finish();
    EXPECT_EQ(headlines(), QStringList());
}

TEST_F(OrderlyEndTest, TheSessionsEndWaitsForTheUnmounts)
{
    (void)addMounted("One");
    (void)addMounted("Two");
    end->terminate();
    end->finish();
    EXPECT_TRUE(desk.hasNoMounts());
}

// It was mounted in the moment of the wish: it comes up and goes again.
TEST_F(OrderlyEndTest, ADiskThatIsOnItsWayIsUnmountedToo)
{
    const VolumePtr volume = folder("Late.nmc", QStringLiteral("Late"));
    controller().volumes().append(volume);
    controller().mountVolume(volume);
    ASSERT_TRUE(volume->isBusy());
    end->quit();
    EXPECT_TRUE(eventLoopUntil([this] { return ends(); }));
    EXPECT_TRUE(desk.hasNoMounts());
}

// Else the disk goes with the process, and its link on the desktop leads nowhere.
TEST_F(OrderlyEndTest, TheSessionsEndUnmountsADiskThatIsOnItsWay)
{
    const VolumePtr volume = folder("Late.nmc", QStringLiteral("Late"));
    controller().volumes().append(volume);
    controller().mountVolume(volume);
    ASSERT_TRUE(volume->isBusy());
    end->terminate();
    end->finish();
    EXPECT_FALSE(volume->isMounted());
    EXPECT_FALSE(QFileInfo(desk.path("Desktop/Late")).isSymLink());
}

// Without the guard the end waits at a password's question for a person who has logged out.
TEST_F(OrderlyEndTest, TheSessionsEndAsksForNoPassword)
{
    const VolumePtr volume = folder("Late.nmc", QStringLiteral("Late"));
    volume->setPassphrase(SecureBuffer::copyOf("wrong"));
    controller().volumes().append(volume);
    controller().mountVolume(volume);
    ASSERT_TRUE(volume->isBusy());
    bool wasAsked = false;
    Person person({[&](QWidget &window) {
        wasAsked = true;
        window.close();
    }});
    end->terminate();
    end->finish();
    EXPECT_FALSE(wasAsked);
    EXPECT_FALSE(volume->isBusy());
}

TEST_F(OrderlyEndTest, TheQuestionsHarmlessAnswerIsTheOneOfEscape)
{
    const VolumePtr volume = addMounted("Work");
    const UniqueFd file = openFileOn(*volume);
    end->quit();
    EXPECT_TRUE(eventLoopUntil([this] { return headlines().contains(question); }));
    EXPECT_TRUE(desk.alerts.shown.back().isDefaultHarmless);
}

// It refused when it left the list; its program has closed the file since.
TEST_F(OrderlyEndTest, ADiskThatIsOffTheListIsUnmountedToo)
{
    VolumePtr volume = folder("Old.nmc", QStringLiteral("Old"));
    controller().volumes().append(volume);
    controller().mountVolume(volume);
    ASSERT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
    UniqueFd file = openFileOn(*volume);
    controller().volumes().clear();
    controller().unmountVolume(volume);
    volume.reset();
    ASSERT_TRUE(eventLoopUntil([this] { return !desk.alerts.shown.empty(); }));
    desk.alerts.shown.clear();
    file = UniqueFd();
    end->quit();
    EXPECT_TRUE(eventLoopUntil([this] { return ends(); }));
    EXPECT_TRUE(desk.hasNoMounts());
    EXPECT_EQ(headlines(), QStringList());
}

TEST_F(OrderlyEndTest, AnOpenAssistantIsCancelled)
{
    QMetaObject::invokeMethod(
        &*end, [this] { end->quit(); }, Qt::QueuedConnection);
    controller().newVolume(); // blocks until it is cancelled
    EXPECT_TRUE(eventLoopUntil([this] { return ends(); }));
    EXPECT_TRUE(controller().volumes().isEmpty());
}

TEST_F(OrderlyEndTest, TheListIsSavedBeforeAnythingElse)
{
    controller().volumes().append(folder("One.nmc", QStringLiteral("One")));
    end->quit();
    EXPECT_TRUE(eventLoopUntil([this] { return ends(); }));
    EXPECT_TRUE(desk.preferences.value(preferencesKey::volumesInfo).isValid());
}

} // namespace nimbrel::test
