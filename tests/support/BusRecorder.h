#pragma once

#include <QString>
#include <QVariantList>

#include <chrono>
#include <memory>
#include <vector>

namespace nimbrel::test {

// One call that came in over the bus.
struct BusCall
{
    QString path;
    QString interface;
    QString method;
    // As Qt DBus gives them. A file descriptor stands here as the path of what it is open on.
    QVariantList arguments;
};

// Owns a name on the session bus, and notes down every call to it. Runs on a thread and a
// connection of its own, so it answers also while a test blocks. Make the PrivateDesktop first.
// Throws std::runtime_error when the name can't be had.
class BusRecorder final
{
public:
    explicit BusRecorder(const QString &name);
    ~BusRecorder();
    BusRecorder(const BusRecorder &) = delete;
    BusRecorder &operator=(const BusRecorder &) = delete;

    // What calls of that name get from now on, in place of an empty answer.
    void answer(const QString &method, const QVariantList &with);
    // Every call from now on gets this error; an empty name makes them succeed again.
    void refuse(const QString &errorName);
    // No call gets an answer from now on.
    void stayAwayFromAnswers();

    [[nodiscard]] std::vector<BusCall> calls() const;
    // Runs the event loop until so many calls have come; false when they haven't within `limit`.
    [[nodiscard]] bool waitForCalls(std::size_t count,
                                    std::chrono::seconds limit = std::chrono::seconds(30)) const;

private:
    class Object;
    struct State;

    std::unique_ptr<State> _state;
};

} // namespace nimbrel::test
