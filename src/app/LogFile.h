#pragma once

#include "config/UniqueFd.h"

#include <QString>
#include <QThreadPool>

#include <functional>

namespace nimbrel {

// A text file that only grows, and the queue that its writes wait in: one at a time, in their
// order, so that lines don't mix.
class LogFile final
{
public:
    // The file Nimbrel.log in `folder`, which is made when its own parent exists. Not being able to
    // is no error: the first write that finds it opens it.
    explicit LogFile(const QString &folder);
    ~LogFile(); // waits for the queue
    LogFile(const LogFile &) = delete;
    LogFile &operator=(const LogFile &) = delete;

    // com.vantrelle.nimbrel.log
    // Runs `work` behind what is queued already, on the queue's own thread. Doesn't wait.
    void async(std::function<void()> work);
    // On the queue only. Adds the text, as UTF-8, at the end of the file.
    void write(const QString &text);

private:
    QByteArray _path;
    UniqueFd _descriptor; // opened with the first write and kept
    QThreadPool _queue;
};

} // namespace nimbrel
