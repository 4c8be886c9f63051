#include "support/FileManagerRecorder.h"

namespace nimbrel::test {

FileManagerRecorder::FileManagerRecorder()
    : _recorder(QStringLiteral("org.freedesktop.FileManager1"))
{
}

std::vector<FileManagerCall> FileManagerRecorder::calls() const
{
    std::vector<FileManagerCall> found;
    for (const BusCall &call : _recorder.calls())
        if (call.interface == QStringLiteral("org.freedesktop.FileManager1"))
            found.push_back({call.method, call.arguments.value(0).toStringList(),
                             call.arguments.value(1).toString()});
    return found;
}

bool FileManagerRecorder::waitForCalls(std::size_t count, std::chrono::seconds limit) const
{
    return _recorder.waitForCalls(count, limit);
}

} // namespace nimbrel::test
