// Looks for encrypted folders in the background.
#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

#include <memory>
#include <stop_token>

namespace nimbrel {

// In the documents and in the folders of all cloud clients. Made, owned and told of on the main
// thread; nobody ever waits for it. It ends soon after its last owner has dropped it, and then
// tells nothing; also soon when the program quits.
class FolderScan final : public QObject, public std::enable_shared_from_this<FolderScan>
{
    Q_OBJECT

public:
    // One list of folders for each location: the documents first, then the services in the order
    // in which they were told.
    using Result = QList<QList<QUrl>>;

    FolderScan() = default;
    ~FolderScan() override;

    void start(const QUrl &documents); // once

Q_SIGNALS:
    // A service's folder; from now on it is looked through.
    void locationFound(const QString &name, const QUrl &url);
    void ended(const nimbrel::FolderScan::Result &folders);

private:
    // On the scan's own thread, without anything of the object but what is handed over.
    [[nodiscard]] static Result search(const std::weak_ptr<FolderScan> &scan, const QUrl &documents,
                                       const std::stop_token &stop);

    std::stop_source _stop;
};

} // namespace nimbrel
