#include "app/NBUpdateDelegate.h"

#include "app/FeedScan.h"
#include "app/NBApplication.h"
#include "app/NumericComparison.h"
#include "app/Util.h"
#include "platform/Preferences.h"
#include "volume/Background.h"
#include "volume/NBVolumesController.h"

#include <QSemaphore>
#include <QThreadPool>

#include <utility>

namespace nimbrel {

// All that the main thread has to say. What is still missing takes time.
struct NBUpdateDelegate::Snapshot
{
    QString platformId;
    QString version;
    bool firstRun = false;
    QList<ScannedVolume> volumes;
    QHash<QString, int> cloudServiceIds;

    // Any thread.
    [[nodiscard]] FeedParameters parameters() const;
    [[nodiscard]] FeedScan scan() const;
};

namespace {

QString joined(const QList<int> &numbers)
{
    QStringList texts;
    for (const int number : numbers)
        texts.append(QString::number(number));
    return texts.join(u',');
}

QList<ScannedVolume> scanned(const QList<VolumePtr> &volumes)
{
    QList<ScannedVolume> made;
    for (const VolumePtr &volume : volumes)
        made.append({volume->path(), volume->encodeFilenames()});
    return made;
}

} // namespace

FeedScan NBUpdateDelegate::Snapshot::scan() const
{
    FeedScan scan;
    if (const auto services = NBCloudServiceDiscoveryController().availableServices())
        scan = scanServices(*services, volumes, cloudServiceIds);
    if (scan.matches != volumes.size())
        scan.providers.append(0);
    return scan;
}

FeedParameters NBUpdateDelegate::Snapshot::parameters() const
{
    const FeedScan found = scan();
    return {{QStringLiteral("platform_id"), platformId},
            {QStringLiteral("version"), version},
            {QStringLiteral("hwid"), Util::hardwareId()},
            {QStringLiteral("firstRun"), firstRun},
            {QStringLiteral("volumeCount"), volumes.size()},
            {QStringLiteral("filenameEncryption"), found.filenameEncryption},
            {QStringLiteral("providers"), joined(found.providers)}};
}

QString NBUpdateDelegate::programVersion()
{
    return QStringLiteral(NIMBREL_VERSION);
}

NBUpdateDelegate::NBUpdateDelegate(NBApplication &application, const Preferences &preferences,
                                   FirstRun firstRun, QString version)
    : _application(application), _preferences(preferences), _firstRun(std::move(firstRun)),
      _version(std::move(version)), _cloudServiceIds{{QStringLiteral("Dropbox"), 1},
                                                     {QStringLiteral("Google Drive"), 2},
                                                     {QStringLiteral("SkyDrive"), 3},
                                                     {QStringLiteral("Sugar Sync"), 4},
                                                     {QStringLiteral("Box"), 5}}
{
}

NBUpdateDelegate::Snapshot NBUpdateDelegate::snapshot() const
{
    const bool wantsBeta = _preferences.boolValue(preferencesKey::updateToBeta);
    return {.platformId = wantsBeta ? QStringLiteral("21") : QStringLiteral("2"),
            .version = _version,
            .firstRun = _firstRun && _firstRun(),
            .volumes = scanned(_application.volumesController().volumes()),
            .cloudServiceIds = _cloudServiceIds};
}

FeedParameters NBUpdateDelegate::feedParametersForUpdater() const
{
    const Snapshot values = snapshot();
    FeedParameters parameters;
    QSemaphore done;
    backgroundPool().start([&] {
        parameters = values.parameters();
        done.release();
    });
    done.acquire();
    return parameters;
}

void NBUpdateDelegate::feedParametersForUpdater(
    const std::weak_ptr<FeedParametersHandler> &done) const
{
    inBackground(
        done, [values = snapshot()] { return values.parameters(); },
        [](const FeedParametersHandler &handler, const FeedParameters &parameters) {
            handler(parameters);
        });
}

std::strong_ordering NBUpdateDelegate::compareVersion(const QString & /*version*/,
                                                      const QString &toVersion) const
{
    return compareNumerically(_version, toVersion);
}

} // namespace nimbrel
