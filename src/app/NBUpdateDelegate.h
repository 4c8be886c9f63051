// What a request for the update feed carries, and how versions compare.
#pragma once

#include "app/FeedParameter.h"

#include <QHash>
#include <QString>

#include <compare>
#include <functional>
#include <memory>

namespace nimbrel {

class NBApplication;
class Preferences;

// Main thread only.
class NBUpdateDelegate final
{
public:
    using FirstRun = std::function<bool()>;

    // This program's version, "1.10".
    [[nodiscard]] static QString programVersion();

    // `application` and `preferences` outlive this. `firstRun` tells, at each request, whether this
    // run is the user's first; `version` is the one that runs.
    NBUpdateDelegate(NBApplication &application, const Preferences &preferences, FirstRun firstRun,
                     QString version = programVersion());

    // Numbers that a feed's server knows the clients by. 0 stands for none of them.
    [[nodiscard]] const QHash<QString, int> &cloudServiceIds() const { return _cloudServiceIds; }
    [[nodiscard]] const QString &version() const noexcept { return _version; }

    // feedParametersForUpdater:sendingSystemProfile:
    // Seven, in their order. Blocks while the clients' folders are looked at, however long.
    [[nodiscard]] FeedParameters feedParametersForUpdater() const;
    // The same without waiting: a dead network disk must not freeze the windows. `done` is called
    // on the main thread, later; not at all when it has gone by then.
    void feedParametersForUpdater(const std::weak_ptr<FeedParametersHandler> &done) const;

    // updater:shouldPostponeRelaunchForUpdate:untilInvoking:
    [[nodiscard]] static bool shouldPostponeRelaunchForUpdate() { return false; }
    // versionComparatorForUpdater:
    [[nodiscard]] const NBUpdateDelegate &versionComparatorForUpdater() const { return *this; }
    // compareVersion:toVersion:
    // Kept: compares the version that runs, whatever the first argument says.
    [[nodiscard]] std::strong_ordering compareVersion(const QString &version,
                                                      const QString &toVersion) const;

private:
    struct Snapshot;
    [[nodiscard]] Snapshot snapshot() const;

    NBApplication &_application;
    const Preferences &_preferences;
    FirstRun _firstRun;
    QString _version;
    QHash<QString, int> _cloudServiceIds;
};

} // namespace nimbrel
