// Looks for newer versions: fetches the feed, compares, tells the user.
#pragma once

#include "app/FeedParameter.h"
#include "app/UpdateTimes.h"
#include "windows/UpdateChecks.h"
#include "windows/UpdateOffer.h"

#include <QSet>
#include <QTimer>
#include <QUrl>

#include <functional>
#include <memory>
#include <variant>

namespace nimbrel {

class FeedRequest;
class NBUpdateDelegate;
class Preferences;
struct Appcast;
struct UpdateFailure;

// Main thread only. Without a usable address it asks nothing of the network and has no timer. It
// may go at any time, also while a check goes on, and waits for nothing then.
class Updater final : public UpdateChecks
{
    Q_OBJECT

public:
    using ShowOffer = std::function<void(const UpdateOffer &offer)>;

    // `address` is the feed's; one that may not be asked is said in the system log and counts as
    // none. `delegate`, `preferences` outlive this.
    Updater(const QString &address, NBUpdateDelegate &delegate, Preferences &preferences,
            ShowOffer showOffer, const UpdateTimes &times = {});
    ~Updater() override;

    // Checks in the background from now on, at most daily. What goes wrong then is in the system
    // log alone; an offer is shown once a version and run.
    void start();

    [[nodiscard]] QString host() const override;
    [[nodiscard]] bool isChecking() const override;
    [[nodiscard]] QDateTime lastUpdateCheckDate() const override;
    void checkForUpdates() override;

    // The address that the build, or in its place the preferences, name; empty for none.
    [[nodiscard]] static QString configuredAddress(const Preferences &preferences);

private:
    enum class Asker
    {
        Nobody, // no check goes on
        Timer,
        Person
    };
    void tick();
    void check(Asker asker);
    void collect();
    void send(const FeedParameters &parameters);
    void hear(const std::variant<QByteArray, UpdateFailure> &answer);
    void succeed(const Appcast &appcast);
    void offer(const UpdateOffer &newest, Asker asker);
    void fail(const UpdateFailure &failure);
    [[nodiscard]] Asker end();
    void noteCheck();
    void sleep(std::chrono::milliseconds time);

    QUrl _feed; // empty: none
    NBUpdateDelegate &_delegate;
    Preferences &_preferences;
    ShowOffer _showOffer;
    UpdateTimes _times;
    std::unique_ptr<QTimer> _timer;               // from start() on
    Asker _asker = Asker::Nobody;                 // of the check that goes on
    std::shared_ptr<FeedParametersHandler> _scan; // until the disks have answered
    QTimer _scanLimit;
    std::unique_ptr<FeedRequest> _request;
    std::unique_ptr<FeedRequest> _spent; // the last one, for a moment
    QSet<QString> _shown;                // versions, in this run
};

} // namespace nimbrel
