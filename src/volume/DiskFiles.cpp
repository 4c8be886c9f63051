#include "volume/DiskFiles.h"

#include "volume/TextConversion.h"

#include <QProcess>

namespace nimbrel {

namespace {

// `script` gets the paths as $1 and $2: nothing in them is read as a command.
void runScript(const QString &script, const QStringList &paths)
{
    QProcess shell;
    shell.setStandardInputFile(QProcess::nullDevice());
    shell.setStandardOutputFile(QProcess::nullDevice());
    shell.setStandardErrorFile(QProcess::nullDevice());
    shell.start(QStringLiteral("/bin/sh"),
                QStringList{QStringLiteral("-c"), script, QStringLiteral("sh")} + paths);
    shell.waitForFinished(-1);
}

} // namespace

void keepTrashAway(const QString &mountPoint)
{
    runScript(QStringLiteral("[ -e \"$1\" ] || : >\"$1\""),
              {pathIn(mountPoint, QStringLiteral(".Trashes"))});
}

void copyOntoDisk(const QString &from, const QString &to)
{
    runScript(QStringLiteral("[ -e \"$2\" ] || cp -- \"$1\" \"$2\""), {from, to});
}

} // namespace nimbrel
