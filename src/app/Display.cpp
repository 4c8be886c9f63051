#include "app/Display.h"

#include <QString>

#include <xcb/xcb.h>

namespace nimbrel {

namespace {

bool doesScreenAnswer()
{
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return answers;
}

} // namespace

bool isDisplayThere()
{
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM") &&
        qEnvironmentVariable("QT_QPA_PLATFORM") != QLatin1String("xcb"))
        return true; // somebody knows better
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return true;
    return !qEnvironmentVariableIsEmpty("DISPLAY") && doesScreenAnswer();
}

} // namespace nimbrel
