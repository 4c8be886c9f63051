#include "support/BusRecorder.h"

#include "support/Process.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QFile>
#include <QMap>
#include <QMutex>
#include <QThread>

#include <atomic>
#include <stdexcept>

namespace nimbrel::test {

namespace {

QVariant readable(const QVariant &argument)
{
    if (argument.canConvert<QDBusUnixFileDescriptor>()) {
        const int file = argument.value<QDBusUnixFileDescriptor>().fileDescriptor();
        return QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(file));
    }
    return argument;
}

// Connections have names in a process; each recorder has one of its own.
QString freshConnectionName()
{
    static std::atomic<int> number = 0;
    return QStringLiteral("nimbrel-test-recorder-%1").arg(++number);
}

} // namespace

class BusRecorder::Object final : public QDBusVirtualObject
{
public:
    QString introspect(const QString & /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

    mutable QMutex mutex;
    std::vector<BusCall> calls;
    QMap<QString, QVariantList> answers;
    QString refusal;
    bool silent = false;
};

bool BusRecorder::Object::handleMessage(const QDBusMessage &message,
                                        const QDBusConnection &connection)
{
    const QMutexLocker lock(&mutex);
    QVariantList arguments;
    for (const QVariant &argument : message.arguments())
        arguments.append(readable(argument));
    calls.push_back({message.path(), message.interface(), message.member(), arguments});
    if (silent) {
        message.setDelayedReply(true);
        return true;
    }
    if (!refusal.isEmpty())
        return connection.send(message.createErrorReply(refusal, QStringLiteral("refused")));
    return connection.send(message.createReply(answers.value(message.member())));
}

struct BusRecorder::State
{
    ~State();
    // Nothing, or why it can't be had.
    [[nodiscard]] QString takeName(const QString &name);

    QString connection = freshConnectionName();
    QThread thread;
    Object object;
};

BusRecorder::State::~State()
{
    QDBusConnection::disconnectFromBus(connection);
    thread.quit();
    thread.wait();
}

QString BusRecorder::State::takeName(const QString &name)
{
    QDBusConnection bus =
        QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), connection);
    if (bus.registerVirtualObject(QStringLiteral("/"), &object, QDBusConnection::SubPath) &&
        bus.registerService(name))
        return {};
    return bus.lastError().message() + u' ' + name;
}

BusRecorder::BusRecorder(const QString &name) : _state(std::make_unique<State>())
{
    _state->object.moveToThread(&_state->thread);
    _state->thread.start();
    QString error;
    const auto take = [&] { error = _state->takeName(name); };
    QMetaObject::invokeMethod(&_state->object, take, Qt::BlockingQueuedConnection);
    if (!error.isEmpty())
        throw std::runtime_error("no name on the bus: " + error.toStdString());
}

BusRecorder::~BusRecorder() = default;

void BusRecorder::answer(const QString &method, const QVariantList &with)
{
    const QMutexLocker lock(&_state->object.mutex);
    _state->object.answers.insert(method, with);
}

void BusRecorder::refuse(const QString &errorName)
{
    const QMutexLocker lock(&_state->object.mutex);
    _state->object.refusal = errorName;
}

void BusRecorder::stayAwayFromAnswers()
{
    const QMutexLocker lock(&_state->object.mutex);
    _state->object.silent = true;
}

std::vector<BusCall> BusRecorder::calls() const
{
    const QMutexLocker lock(&_state->object.mutex);
    return _state->object.calls;
}

bool BusRecorder::waitForCalls(std::size_t count, std::chrono::seconds limit) const
{
    return eventually(
        [&] {
            QCoreApplication::processEvents();
            return calls().size() >= count;
        },
        limit);
}

} // namespace nimbrel::test
