#include "app/InstanceLock.h"

#include "app/SystemLog.h"
#include "app/TextFormat.h"
#include "app/Texts.h"
#include "platform/SystemFacts.h"

#include <QDir>
#include <QFileInfo>

namespace nimbrel {

namespace {

// One a machine and user; the home folder may be shared by machines.
QString lockPath()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QString folder = QDir::isAbsolutePath(runtime)
                               ? runtime
                               : systemFacts::stateFolder() + QStringLiteral("/Nimbrel");
    return folder + QStringLiteral("/com.nimbrel.Nimbrel.lock");
}

} // namespace

InstanceLock::InstanceLock() : _file(lockPath())
{
    _file.setStaleLockTime(0); // only a holder that has ended leaves it
}

std::optional<QString> InstanceLock::take()
{
    QDir().mkpath(QFileInfo(_file.fileName()).path());
    if (_file.tryLock(0))
        return std::nullopt;
    if (_file.error() != QLockFile::LockFailedError) {
        systemLog(QStringLiteral("%1 can't be written.").arg(_file.fileName()));
        return std::nullopt;
    }
    qint64 process = 0;
    QString host;
    QString program;
    (void)_file.getLockInfo(&process, &host, &program);
    return formatted(
        texts::tr("Nimbrel is running in another session already (process %@). Quit it there "
                  "first."),
        {QString::number(process)});
}

} // namespace nimbrel
