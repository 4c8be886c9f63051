#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>

namespace nimbrel {

// What windows know of the search for updates. Main thread only.
class UpdateChecks : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // The host that is asked, "updates.example.org"; empty when no address is configured, and then
    // nothing is ever asked.
    [[nodiscard]] virtual QString host() const = 0;
    [[nodiscard]] virtual bool isChecking() const = 0;
    // The last check that got an answer; invalid for none.
    [[nodiscard]] virtual QDateTime lastUpdateCheckDate() const = 0;
    // Asks now, for a person who waits: the outcome comes as a window or an alert. Nothing while a
    // check goes on, or without an address.
    virtual void checkForUpdates() = 0;

Q_SIGNALS:
    void changed(); // what the operations above tell
};

} // namespace nimbrel
