#pragma once

#include <QStringList>

namespace nimbrel::translation {

// Puts the application's texts, and Qt's own, into the first of these languages in which all texts
// are there, else into English. They are named as QLocale::uiLanguages does, the user's favourite
// first; dates follow. Replaces what an earlier call put there. Main thread, with an application
// object; windows that stand already keep their texts.
void install(const QStringList &languages);

} // namespace nimbrel::translation
