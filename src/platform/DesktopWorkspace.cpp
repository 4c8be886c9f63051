#include "platform/DesktopWorkspace.h"

#include "platform/DesktopCalls.h"
#include "platform/MountedDisksOnDesktop.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>

namespace nimbrel {

namespace {

enum class Kind
{
    Missing,
    Folder,
    File
};

// Takes what the kernel has of the root of a disk: the disk isn't asked, it may hang.
Kind kindOf(const QString &path)
{
    struct statx facts = {};
    const QByteArray name = QFile::encodeName(path);
    if (::statx(AT_FDCWD, name.constData(), AT_STATX_DONT_SYNC, STATX_TYPE, &facts) != 0)
        return Kind::Missing;
    return S_ISDIR(facts.stx_mode) ? Kind::Folder : Kind::File;
}

// Never an option of the program that gets it.
QString absolute(const QString &path)
{
    return QFileInfo(path).absoluteFilePath();
}

} // namespace

void DesktopWorkspace::openFile(const QString &path)
{
    const QString item = absolute(path);
    switch (kindOf(item)) {
    case Kind::Folder:
        return desktop::showFolder(item);
    case Kind::File:
        return desktop::openFile(item);
    case Kind::Missing:
        qWarning() << "Nothing to open at" << item;
    }
}

void DesktopWorkspace::selectFile(const QString &path, const QString &inFileViewerRootedAtPath)
{
    const QString item = absolute(path);
    if (kindOf(item) != Kind::Missing)
        return desktop::revealItem(item);
    openFile(inFileViewerRootedAtPath.isEmpty() ? QFileInfo(item).path()
                                                : inFileViewerRootedAtPath);
}

void DesktopWorkspace::openURL(const QUrl &url)
{
    if (url.isLocalFile())
        return openFile(url.toLocalFile());
    if (url.isValid() && !url.scheme().isEmpty())
        return desktop::openAddress(url);
    qWarning() << "No address to open:" << url;
}

bool DesktopWorkspace::showsMountedDisksOnDesktop() const
{
    return mountedDisksAreOnDesktop();
}

} // namespace nimbrel
