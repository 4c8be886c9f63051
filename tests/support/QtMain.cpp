// The main() of tests that need an event loop or widgets.
#include "support/PrivateDesktop.h"

#include <gmock/gmock.h>

#include <QApplication>

int main(int argc, char **argv)
{
    ::testing::InitGoogleMock(&argc, argv);
    // A test that makes no desktop of its own still finds none of the user's: neither files nor
    // bus.
    const nimbrel::test::PrivateDesktop nobodys({.bus = false, .keyring = false});
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
