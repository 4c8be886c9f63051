#include "app/Log.h"

#include "app/LogFile.h"
#include "app/SystemLog.h"
#include "app/TextFormat.h"
#include "app/Util.h"
#include "platform/SystemFacts.h"

#include <QTime>

#include <utility>

namespace nimbrel {

namespace {

// "%02d:%02d:%06.3f %@\n"
// The time of day as the user's clock shows it; there is no date.
QString lineOf(const QTime &time, const QString &message)
{
    const double seconds = time.second() + time.msec() / 1000.0;
    return QString::asprintf("%02d:%02d:%06.3f ", time.hour(), time.minute(), seconds) + message +
           QLatin1Char('\n');
}

} // namespace

Log::Log(QString folder) : _folder(std::move(folder))
{
    if (_folder.isEmpty())
        _folder = systemFacts::stateFolder() + QLatin1String("/Nimbrel");
}

Log::~Log() = default;

LogFile &Log::file()
{
    std::call_once(_fileMade, [this] { _file = std::make_unique<LogFile>(_folder); });
    return *_file;
}

QString Log::versionText()
{
    const QString version = QStringLiteral(NIMBREL_VERSION);
    return formatted(QStringLiteral("%@ (%@)"), {version, version});
}

void Log::banner(const QString &applicationVersion, const QString &fuseVersion)
{
    if (!_isOn)
        return;
    LogFile &log = file();
    log.async([&log, applicationVersion, fuseVersion] {
        const QString text =
            formatted(QStringLiteral("\n\nNimbrel %@ running on OS X %@ with FUSE %@. \n\n"),
                      {applicationVersion, Util::OSVersion(), fuseVersion});
        systemLog(text);
        log.write(text);
    });
}

void Log::NBLog(const QString &message)
{
    if (!_isOn)
        return;
    LogFile &log = file();
    log.async([&log, message] {
        systemLog(message);
        log.write(lineOf(QTime::currentTime(), message));
    });
}

} // namespace nimbrel
