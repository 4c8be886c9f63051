#include "volume/DiskFiles.h"

#include "fs/MountTable.h"
#include "volume/MountPlace.h"
#include "volume/TextConversion.h"

#include <QProcess>

namespace nimbrel {

namespace {

// Inside the disk, and nowhere else: the device is that of the mount.
const QString enter = QStringLiteral("cd -- \"$1\" && [ \"$(stat -c %d .)\" = \"$2\" ] || exit; ");

// `script` finds its own paths as $3 and $4: nothing in them is read as a command.
void runOnDisk(const QString &mountPoint, const QString &script, const QStringList &paths)
{
    const std::string point = canonicalMountPoint(mountPoint);
    const std::optional<Mount> disk = mountAt(point);
    if (!disk)
        return;
    QProcess shell;
    shell.setStandardInputFile(QProcess::nullDevice());
    shell.setStandardOutputFile(QProcess::nullDevice());
    shell.setStandardErrorFile(QProcess::nullDevice());
    shell.start(QStringLiteral("/bin/sh"),
                QStringList{QStringLiteral("-c"), enter + script, QStringLiteral("sh"),
                            qtText(point), QString::number(disk->device)} +
                    paths);
    shell.waitForFinished(-1);
}

} // namespace

void keepTrashAway(const QString &mountPoint)
{
    runOnDisk(mountPoint, QStringLiteral("[ -e .Trashes ] || : >.Trashes"), {});
}

void copyOntoDisk(const QString &from, const QString &mountPoint, const QString &name)
{
    runOnDisk(mountPoint, QStringLiteral("[ -e \"./$4\" ] || cp -- \"$3\" \"./$4\""), {from, name});
}

} // namespace nimbrel
