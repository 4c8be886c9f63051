#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace nimbrel {

// What one start of the program wants of the application: the org.freedesktop.Application interface
// (Desktop Entry Specification 1.5, "D-Bus Activation").
struct ApplicationRequest
{
    enum class Kind
    {
        Activate, // show yourself
        Open,     // these folders
        Reveal    // these files' encrypted counterparts
    };
    Kind kind = Kind::Activate;
    QStringList urls = {}; // file URLs, encoded
};

namespace runningApplication {

inline const QString busName = QStringLiteral("com.nimbrel.Nimbrel");
inline const QString objectPath = QStringLiteral("/com/nimbrel/Nimbrel");
inline const QString revealAction = QStringLiteral("reveal-encrypted");

enum class HandOver
{
    Done,
    NobodyThere, // or no session bus
    Failed       // somebody is there and doesn't answer
};

// Hands the request to the application that runs in this session. Needs no application object.
// Waits for the answer, for some seconds at most.
[[nodiscard]] HandOver handOver(const ApplicationRequest &request);

} // namespace runningApplication

} // namespace nimbrel
