#include "app/Updater.h"

#include "app/Appcast.h"
#include "app/FeedAddress.h"
#include "app/FeedRequest.h"
#include "app/NBUpdateDelegate.h"
#include "app/SystemLog.h"
#include "app/UpdateAlerts.h"
#include "app/UpdateFailure.h"
#include "platform/Preferences.h"

#include <utility>

namespace nimbrel {

QString Updater::configuredAddress(const Preferences &preferences)
{
    const QString own = preferences.value(preferencesKey::feedURL).toString().trimmed();
    return own.isEmpty() ? QStringLiteral(NIMBREL_UPDATE_FEED) : own;
}

Updater::Updater(const QString &address, NBUpdateDelegate &delegate, Preferences &preferences,
                 ShowOffer showOffer, const UpdateTimes &times)
    : _feed(feedAddress(address)), _delegate(delegate), _preferences(preferences),
      _showOffer(std::move(showOffer)), _times(times)
{
    if (_feed.isEmpty() && !address.trimmed().isEmpty())
        systemLog(QStringLiteral("The address of the update feed isn't a secure one (https) and "
                                 "isn't used: %1")
                      .arg(QUrl(address).toDisplayString()));
    _scanLimit.setSingleShot(true);
    connect(&_scanLimit, &QTimer::timeout, this,
            [this] { fail({.cause = UpdateFailure::Cause::Disk}); });
}

Updater::~Updater() = default;

QString Updater::host() const
{
    return _feed.host();
}

bool Updater::isChecking() const
{
    return _asker != Asker::Nobody;
}

QDateTime Updater::lastUpdateCheckDate() const
{
    return _preferences.value(preferencesKey::lastCheckTime).toDateTime();
}

void Updater::start()
{
    if (_feed.isEmpty() || _timer)
        return;
    _timer = std::make_unique<QTimer>();
    _timer->setSingleShot(true);
    connect(_timer.get(), &QTimer::timeout, this, &Updater::tick);
    sleep(_times.afterStart);
}

void Updater::sleep(std::chrono::milliseconds time)
{
    if (_timer)
        _timer->start(time);
}

void Updater::tick()
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    if (isChecking()) // whose end sets the timer
        return;
    if (_times.until(lastUpdateCheckDate(), now) <= std::chrono::milliseconds(0))
        return check(Asker::Timer);
    sleep(_times.sleepUntil(lastUpdateCheckDate(), now));
}

void Updater::checkForUpdates()
{
    if (!_feed.isEmpty() && !isChecking())
        check(Asker::Person);
}

void Updater::check(Asker asker)
{
    _asker = asker;
    Q_EMIT changed();
    collect();
}

// Disks that haven't answered an earlier check yet aren't asked again: one thread waits for them at
// most.
void Updater::collect()
{
    _scanLimit.start(_times.limit);
    if (_scan)
        return;
    _scan = std::make_shared<FeedParametersHandler>([this](const FeedParameters &parameters) {
        _scan.reset();
        if (_scanLimit.isActive()) // else nobody waits any more
            send(parameters);
    });
    _delegate.feedParametersForUpdater(_scan);
}

void Updater::send(const FeedParameters &parameters)
{
    _scanLimit.stop();
    _request = std::make_unique<FeedRequest>(
        withParameters(_feed, parameters), _delegate.version(), _times.limit,
        [this](const FeedRequest::Answer &answer) { hear(answer); });
}

void Updater::hear(const std::variant<QByteArray, UpdateFailure> &answer)
{
    _spent = std::move(_request); // it calls us, so it can't go yet
    QMetaObject::invokeMethod(
        this, [this] { _spent.reset(); }, Qt::QueuedConnection);
    if (const auto *failure = std::get_if<UpdateFailure>(&answer))
        return fail(*failure);
    const auto read = readAppcast(std::get<QByteArray>(answer));
    if (const auto *reason = std::get_if<QString>(&read))
        return fail({UpdateFailure::Cause::NotAFeed, *reason});
    succeed(std::get<Appcast>(read));
}

// Windows come last here and below: they may take long, and this may have gone by then.
void Updater::succeed(const Appcast &appcast)
{
    noteCheck();
    const Asker asker = end();
    const QDateTime now = QDateTime::currentDateTimeUtc();
    sleep(_times.sleepUntil(lastUpdateCheckDate(), now));
    const auto &comparator = _delegate.versionComparatorForUpdater();
    const std::optional<UpdateOffer> newest = appcast.newest();
    if (newest && std::is_lt(comparator.compareVersion(_delegate.version(), newest->version)))
        return offer(*newest, asker);
    if (asker == Asker::Person)
        tellUpToDate(_delegate.version());
}

void Updater::offer(const UpdateOffer &newest, Asker asker)
{
    const bool isKnown = _shown.contains(newest.version);
    _shown.insert(newest.version);
    if (asker == Asker::Person || !isKnown)
        _showOffer(newest);
}

void Updater::fail(const UpdateFailure &failure)
{
    systemLog(failure.line(host()));
    const Asker asker = end();
    sleep(_times.afterFailure);
    if (asker == Asker::Person)
        tellFailure(failure, host());
}

Updater::Asker Updater::end()
{
    _scanLimit.stop();
    const Asker asker = std::exchange(_asker, Asker::Nobody);
    Q_EMIT changed();
    return asker;
}

void Updater::noteCheck()
{
    _preferences.setValue(preferencesKey::lastCheckTime,
                          QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
    if (!_preferences.synchronize())
        systemLog(QStringLiteral("The time of the check for updates isn't stored: %1")
                      .arg(_preferences.trouble().value_or(QString())));
}

} // namespace nimbrel
