#include "app/SystemLog.h"

#include "app/TextFormat.h"

#include <QDebug>
#include <QMessageLogContext>

#include <cerrno>
#include <cstdlib>
#include <fmt/format.h>
#include <mutex>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

namespace nimbrel {

namespace {

int priorityOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return LOG_DEBUG;
    case QtInfoMsg:
        return LOG_NOTICE; // what a user may have to know; LOG_INFO is dropped in places
    case QtWarningMsg:
        return LOG_WARNING;
    case QtCriticalMsg:
        return LOG_ERR;
    case QtFatalMsg:
        return LOG_CRIT;
    }
    return LOG_NOTICE;
}

// One line that a terminal shows as it is: a name with a line feed can't forge a second message.
QString onOneLine(const QString &text)
{
    QString line;
    for (const QChar character : text) {
        const bool isLineEnd =
            character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
        if (character == u'\n')
            line += QLatin1String("\\n");
        else if (character.category() == QChar::Other_Control || isLineEnd)
            line += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
        else
            line += character;
    }
    return line;
}

// systemd names the journal's own stream to the programs that it starts (systemd.exec(5)): what
// they write to standard error is in the journal already.
bool standardErrorIsTheJournal()
{
    const char *stream = std::getenv("JOURNAL_STREAM");
    struct stat status = {};
    return stream != nullptr && ::fstat(STDERR_FILENO, &status) == 0 &&
           fmt::format("{}:{}", status.st_dev, status.st_ino) == stream;
}

void writeToStandardError(QByteArrayView line)
{
    while (!line.isEmpty()) {
        const ssize_t written =
            ::write(STDERR_FILENO, line.data(), static_cast<std::size_t>(line.size()));
        if (written < 0 && errno != EINTR)
            return; // there is nowhere else to say it
        line = line.sliced(std::max<ssize_t>(written, 0));
    }
}

void writeMessage(QtMsgType type, const QMessageLogContext & /*context*/, const QString &message)
{
    static std::mutex mutex; // lines don't mix
    const QByteArray line = onOneLine(message).toUtf8();
    const std::scoped_lock lock(mutex);
    writeToStandardError(line + '\n');
    if (!standardErrorIsTheJournal())
        ::syslog(priorityOf(type), "%s", line.constData());
}

} // namespace

void systemLog(const QString &line)
{
    qInfo().noquote().nospace() << line;
}

void systemLogAt(const char *method, int line, const QString &text)
{
    systemLog(formatted(QStringLiteral("%s [Line %d] %@"),
                        {QString::fromUtf8(method), QString::number(line), text}));
}

void installSystemLog()
{
    ::openlog("nimbrel", LOG_PID, LOG_USER);
    qInstallMessageHandler(writeMessage);
}

} // namespace nimbrel
