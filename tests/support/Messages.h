// What Qt's message handler gets.
#pragma once

#include <QMutex>
#include <QString>
#include <QStringList>

namespace nimbrel::test {

// Takes every message while it lives; one at a time.
class Messages final
{
public:
    Messages() : _before(qInstallMessageHandler(keep)) { _current = this; }
    ~Messages()
    {
        qInstallMessageHandler(_before);
        const QMutexLocker lock(&_mutex);
        _current = nullptr;
    }
    Messages(const Messages &) = delete;
    Messages &operator=(const Messages &) = delete;

    [[nodiscard]] QStringList texts() const
    {
        const QMutexLocker lock(&_mutex);
        return _texts;
    }

private:
    static void keep(QtMsgType /*type*/, const QMessageLogContext & /*context*/,
                     const QString &text)
    {
        const QMutexLocker lock(&_mutex);
        if (_current != nullptr)
            _current->_texts += text;
    }

    inline static QMutex _mutex;
    inline static Messages *_current = nullptr;
    QtMessageHandler _before;
    QStringList _texts;
};

} // namespace nimbrel::test
