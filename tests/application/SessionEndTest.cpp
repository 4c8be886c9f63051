#include "app/SessionEnd.h"

#include "app/OrderlyEnd.h"
#include "application/ApplicationDesk.h"

#include <QTimer>

namespace nimbrel::test {

namespace {

class SessionEndTest : public ::testing::Test, public ApplicationDesk
{
protected:
    SessionEndTest()
    {
        desk.preferences.setValue(preferencesKey::advanced, true);
        start();
        end = std::make_unique<OrderlyEnd>(*delegate);
        session = std::make_unique<SessionEnd>(*delegate, *end);
    }
    // The wish to exit outlives the test: no event loop would run any more.
    ~SessionEndTest() override
    {
        QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(); });
        QApplication::exec();
    }
    void shutDown(bool isComing)
    {
        EXPECT_TRUE(
            QMetaObject::invokeMethod(session.get(), "prepareForShutdown", Q_ARG(bool, isComing)));
    }

    std::unique_ptr<OrderlyEnd> end;
    std::unique_ptr<SessionEnd> session;
};

} // namespace

// Without the filter each window would be asked whether it may close, and could keep the program
// from ending with its session.
TEST_F(SessionEndTest, TheWindowSystemsWishToQuitEndsTheProgramAndAsksNoWindow)
{
    statusItem().openPreferencesWindow(); // it would ask: no folder was chosen
    QEvent wish(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &wish);
    EXPECT_TRUE(end->isTerminating());
    EXPECT_TRUE(desk.alerts.shown.empty());
}

TEST_F(SessionEndTest, AShutdownEndsTheProgram)
{
    shutDown(true);
    EXPECT_TRUE(end->isTerminating());
}

TEST_F(SessionEndTest, AShutdownThatIsCalledOffDoesNot)
{
    shutDown(false);
    EXPECT_FALSE(end->isTerminating());
}

} // namespace nimbrel::test
