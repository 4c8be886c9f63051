#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>

namespace nimbrel {

class NBAppDelegate;
class NBNimbrelVolume;

// The end of the application so that no disk goes from under an open file without a word. The
// delegate's own end starts each unmount and waits for none; this waits, and asks where a disk is
// in use. Main thread only.
class OrderlyEnd final : public QObject
{
    Q_OBJECT

public:
    explicit OrderlyEnd(NBAppDelegate &delegate);

    // A person wants to quit: what asks something is cancelled, and disks are unmounted. Who uses
    // one that refuses is told, and whether to quit all the same is asked. Returns at once.
    void quit();
    // The session ends, or somebody sent a signal: nobody is asked.
    void terminate();
    [[nodiscard]] bool isTerminating() const noexcept { return _isTerminating; }

    // For the main function, behind the event loop: the delegate's end, then up to `patience` for
    // disks that are on their way. Alerts go to the system log.
    void finish(std::chrono::milliseconds patience = std::chrono::seconds(10));

private:
    void begin();
    void look();
    void noteArriving();
    void unmountLeftBehind();
    [[nodiscard]] QList<std::shared_ptr<NBNimbrelVolume>> disks() const;
    void unmountArrived();
    void askAboutDisksInUse();
    [[nodiscard]] bool isAnyBusy() const;
    [[nodiscard]] bool isAnyMounted() const;

    NBAppDelegate &_delegate;
    QList<std::weak_ptr<NBNimbrelVolume>> _arriving; // were being mounted at the wish to quit
    QTimer _looking;
    QElapsedTimer _since;
    bool _isQuitting = false;
    bool _isTerminating = false;
};

} // namespace nimbrel
