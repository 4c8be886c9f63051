#pragma once

#include "volume/ThreadHandover.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThreadPool>

#include <memory>
#include <utility>

namespace nimbrel {

// Where what takes long is done. Not in Qt's global pool: Qt paints with that one's threads, and a
// store that doesn't answer would freeze the windows. Thread-safe.
[[nodiscard]] QThreadPool &backgroundPool();

// Calls `done(owner)` on the main thread, later; not at all when the owner has gone by then.
template <class Owner, class Done>
void onMainThread(std::weak_ptr<Owner> owner, Done done)
{
    QCoreApplication *const application = QCoreApplication::instance();
    if (application == nullptr)
        return; // the program is at its end
    const ThreadHandover handover;
    handover.give();
    QMetaObject::invokeMethod(
        application,
        [handover, owner = std::move(owner), done = std::move(done)]() mutable {
            handover.take();
            if (const std::shared_ptr<Owner> alive = owner.lock())
                done(*alive);
        },
        Qt::QueuedConnection);
}

// Runs `work()` on a thread of `pool`, then `done(owner, result)` on the main thread, if the owner
// is still there. The work holds nothing of the owner's. The program waits at its end for what runs
// in the background's own pool.
template <class Owner, class Work, class Done>
void inBackground(std::weak_ptr<Owner> owner, Work work, Done done,
                  QThreadPool &pool = backgroundPool())
{
    const ThreadHandover handover;
    handover.give();
    pool.start([handover, owner = std::move(owner), work = std::move(work),
                done = std::move(done)]() mutable {
        handover.take();
        onMainThread(std::move(owner),
                     [result = work(), done = std::move(done)](Owner &alive) mutable {
                         done(alive, std::move(result));
                     });
    });
}

} // namespace nimbrel
