#pragma once

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

#include <memory>
#include <optional>
#include <utility>

namespace nimbrel {

// Runs `work()` on another thread and waits for its result, while windows go on painting; what the
// user types and clicks meanwhile comes afterwards. For an operation that has to give its result at
// once and yet takes long. Main thread; the work holds nothing that this thread changes.
template <class Work>
[[nodiscard]] auto waitFor(Work work) -> decltype(work())
{
    std::optional<decltype(work())> result;
    const std::unique_ptr<QThread> thread(QThread::create([&] { result.emplace(work()); }));
    QEventLoop loop;
    QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
    thread->start();
    if (QCoreApplication::instance() != nullptr)
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    thread->wait(); // the program may be quitting, which ends every loop
    return std::move(*result);
}

} // namespace nimbrel
