#pragma once

#include "platform/RunningApplication.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace nimbrel {

// nimbrel [FOLDER...], nimbrel --reveal-encrypted FILE...
struct ProgramArguments
{
    ApplicationRequest request = {};
    bool wasLaunchedAtLogin = false;
    QString answer = {}; // what --help or --version prints; then nothing else is done
    QString error = {};  // what is wrong with the arguments

    // `arguments` begin with the program's own name. Needs no application object.
    [[nodiscard]] static ProgramArguments of(const QStringList &arguments);
};

} // namespace nimbrel
