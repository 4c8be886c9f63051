#include "app/Util.h"

#include <QProcess>

namespace nimbrel {

namespace {

bool isRunning(const QProcess &task)
{
    return task.state() != QProcess::NotRunning;
}

// Sleeps until there may be more to read, or the task has ended. The task's state changes here
// alone: what it wrote before its end can be read when it is seen to have ended.
void waitForOutput(QProcess &task, QIODevice &handle)
{
    constexpr int whileBothCount = 50; // milliseconds
    if (&handle == &task) {
        // Without a time limit it comes back early only when the task has closed its output.
        if (!task.waitForReadyRead(-1) && isRunning(task))
            task.waitForFinished(-1);
    } else if (!handle.waitForReadyRead(whileBothCount)) {
        task.waitForFinished(whileBothCount);
    }
}

} // namespace

QString Util::getTaskOutput(QIODevice &handle)
{
    const QString text = QString::fromUtf8(handle.readAll()).trimmed();
    return text.isEmpty() ? QStringLiteral("") : text;
}

QString Util::getTaskOutput(QProcess &task, QIODevice &ouputHandle)
{
    for (;;) {
        // The test stands behind the read: a task that has ended is read once.
        QString text = getTaskOutput(ouputHandle);
        if (!text.isEmpty() || !isRunning(task))
            return text;
        waitForOutput(task, ouputHandle);
    }
}

QString Util::getTaskOutput(QProcess &task, const QString &untilText, QIODevice &outputHandle)
{
    QString collected = QStringLiteral("");
    while (isRunning(task)) {
        collected += getTaskOutput(task, outputHandle);
        if (collected.contains(untilText))
            break;
    }
    return collected;
}

} // namespace nimbrel
