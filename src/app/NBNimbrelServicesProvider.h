// For a file on a mounted disk, shows its encrypted counterpart in the file manager.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

namespace nimbrel {

class NBVolumesController;
class Workspace;
struct ResolvedPaths;

// Main thread only, for volumes are: what looks at disks goes to the background with plain paths,
// and comes back. It may go at any time.
class NBNimbrelServicesProvider final : public QObject
{
    Q_OBJECT

public:
    // Both outlive this.
    NBNimbrelServicesProvider(NBVolumesController &volumesController, Workspace &workspace);
    ~NBNimbrelServicesProvider() override;

    // showInFolderService:userData:error:
    // `url` is the file's, or no URL at all. Returns at once; the rest happens in the event loop.
    // What can't be shown is an alert.
    void showInFolderService(const QString &url);

private:
    struct Counterparts;
    void begin(const QString &url);
    void search(const ResolvedPaths &paths);
    void show(const Counterparts &counterparts);
    [[nodiscard]] std::weak_ptr<NBNimbrelServicesProvider> self() const { return _self; }

    NBVolumesController &_volumesController;
    Workspace &_workspace;
    std::shared_ptr<NBNimbrelServicesProvider> _self; // tells the background that this is there
};

} // namespace nimbrel
