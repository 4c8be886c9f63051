#pragma once

#include <QString>
#include <QUrl>

namespace nimbrel {

// A cloud client that may be installed, and where its synchronised folder lies. Each client is a
// subclass with a probe of its own, which only reads local files. Short-lived: whoever needs one
// makes it. Any thread, one at a time.
class NBCloudService
{
public:
    virtual ~NBCloudService() = default;
    NBCloudService(const NBCloudService &) = delete;
    NBCloudService &operator=(const NBCloudService &) = delete;

    // For menus.
    [[nodiscard]] const QString &name() const noexcept { return _name; }

    // The client's sync root, a local path without a final slash. Empty until isAvailable() has
    // been true once; a later failure doesn't clear it.
    [[nodiscard]] const QUrl &storageURL() const noexcept { return _storageURL; }

    // The whole probe, anew at each call: nothing is kept of the last one. Blocks for some file
    // reads. False without a probe.
    [[nodiscard]] virtual bool isAvailable() { return false; }

protected:
    explicit NBCloudService(QString name);

    // The end of a probe: `path`, with a leading tilde expanded, is the sync root when something is
    // there. It need not be a folder.
    [[nodiscard]] bool finish(const QString &path);
    // The same without a look at the disk, for what is known to be there. Not for an empty path.
    bool finishUnseen(const QString &path);

private:
    QString _name;
    QUrl _storageURL;
};

} // namespace nimbrel
