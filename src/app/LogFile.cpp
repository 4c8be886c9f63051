#include "app/LogFile.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace nimbrel {

LogFile::LogFile(const QString &folder)
    : _path(QFile::encodeName(folder + QLatin1String("/Nimbrel.log")))
{
    _queue.setMaxThreadCount(1);
    static_cast<void>(::mkdir(QFile::encodeName(folder).constData(), 0700)); // often there already
}

LogFile::~LogFile()
{
    _queue.waitForDone();
}

void LogFile::async(std::function<void()> work)
{
    _queue.start(std::move(work));
}

void LogFile::write(const QString &text)
{
    if (!_descriptor)
        _descriptor.reset(::open(_path.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    if (!_descriptor)
        return; // tried again with the next write
    const QByteArray bytes = text.toUtf8();
    const off_t end = ::lseek(_descriptor.get(), 0, SEEK_END);
    // Nothing here reports a failure: the system log has the text.
    [[maybe_unused]] const ssize_t written =
        ::pwrite(_descriptor.get(), bytes.constData(), static_cast<std::size_t>(bytes.size()), end);
}

} // namespace nimbrel
