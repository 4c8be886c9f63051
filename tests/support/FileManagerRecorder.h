#pragma once

#include "support/BusRecorder.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <vector>

namespace nimbrel::test {

struct FileManagerCall
{
    QString method; // "ShowFolders" or "ShowItems"
    QStringList uris;
    QString startupId;
};

// A file manager that opens no window and notes down what it was asked to show. Make the
// PrivateDesktop first; a QCoreApplication must be there.
class FileManagerRecorder final
{
public:
    FileManagerRecorder();

    [[nodiscard]] std::vector<FileManagerCall> calls() const;
    // Runs the event loop until so many calls have come; false when they haven't within `limit`.
    [[nodiscard]] bool waitForCalls(std::size_t count,
                                    std::chrono::seconds limit = std::chrono::seconds(30)) const;
    // Every call gets this D-Bus error from now on; it is noted down all the same.
    void refuse(const QString &errorName) { _recorder.refuse(errorName); }

private:
    BusRecorder _recorder;
};

} // namespace nimbrel::test
