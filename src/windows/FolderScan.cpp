#include "windows/FolderScan.h"

#include "discovery/NBCloudServiceDiscoveryController.h"
#include "volume/Background.h"

#include <QPointer>

namespace nimbrel {

namespace {

// Threads of its own: a network folder that doesn't answer must not hold up a mount. At its end
// the application object waits for them, when every scan has been told to stop.
QThreadPool &scanPool()
{
    constexpr int threads = 16;
    static QPointer<QThreadPool> pool;
    if (pool.isNull()) {
        pool = new QThreadPool(QCoreApplication::instance());
        pool->setObjectName(QStringLiteral("FolderScan"));
        pool->setMaxThreadCount(threads);
    }
    return *pool;
}

} // namespace

FolderScan::~FolderScan()
{
    _stop.request_stop();
}

void FolderScan::start(const QUrl &documents)
{
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this,
            [this] { _stop.request_stop(); });
    const std::weak_ptr<FolderScan> self = weak_from_this();
    inBackground(
        self, [self, documents, stop = _stop.get_token()] { return search(self, documents, stop); },
        [](FolderScan &scan, const Result &folders) { Q_EMIT scan.ended(folders); }, scanPool());
}

FolderScan::Result FolderScan::search(const std::weak_ptr<FolderScan> &scan, const QUrl &documents,
                                      const std::stop_token &stop)
{
    const NBCloudServiceDiscoveryController discovery;
    const auto services = discovery.availableServices();
    Result folders{discovery.nmFoldersWithURL(documents, stop)};
    if (!services)
        return folders;
    for (const auto &service : *services) {
        if (stop.stop_requested())
            break;
        onMainThread(scan, [name = service->name(), url = service->storageURL()](FolderScan &at) {
            Q_EMIT at.locationFound(name, url);
        });
        folders.append(discovery.nmFoldersWithURL(service->storageURL(), stop));
    }
    return folders;
}

} // namespace nimbrel
