#pragma once

#include <QLocale>

namespace nimbrel::translation {

// Puts the application's texts, and Qt's own, into the locale's language from now on; what has no
// translation stays English. Replaces what an earlier call put there. Main thread, with an
// application object; windows that stand already keep their texts.
void install(const QLocale &locale);

} // namespace nimbrel::translation
