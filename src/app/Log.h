#pragma once

#include <QString>

#include <memory>
#include <mutex>

namespace nimbrel {

class LogFile; // the serial queue and the file; made on first use

// The diagnostic file, off by default: $XDG_STATE_HOME/Nimbrel/Nimbrel.log. Nothing here reports a
// failure; the system log has the text all the same. The file never rotates.
class Log final
{
public:
    // `folder` is where the file lies; empty: the user's own.
    explicit Log(QString folder = {});
    ~Log(); // waits until everything queued is written
    Log(const Log &) = delete;
    Log &operator=(const Log &) = delete;

    // Nothing switches it off again. Before any other thread logs.
    void switchOn() { _isOn = true; }
    [[nodiscard]] bool isOn() const noexcept { return _isOn; }

    // The version and, in parentheses, the build's: here these are one number, "0.1.0 (0.1.0)".
    [[nodiscard]] static QString versionText();

    // The start banner: the versions in play. `applicationVersion` is versionText().
    void banner(const QString &applicationVersion, const QString &fuseVersion);
    // NBLog
    // `message` is formatted already; the caller doesn't wait for the file. Any thread.
    void NBLog(const QString &message);

private:
    LogFile &file();

    QString _folder;
    bool _isOn = false;
    std::once_flag _fileMade;
    std::unique_ptr<LogFile> _file;
};

} // namespace nimbrel
