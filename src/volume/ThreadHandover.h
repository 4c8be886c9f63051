#pragma once

#include <atomic>
#include <memory>

namespace nimbrel {

// Marks where work goes from one thread to another. Qt's queues order that already; but they wait
// with futexes of their own, which the thread sanitizer doesn't see, and it would take all that is
// handed over for unguarded. A copy goes with the work.
class ThreadHandover final
{
public:
    void give() const { _given->store(true, std::memory_order_release); }
    void take() const { (void)_given->load(std::memory_order_acquire); }

private:
    std::shared_ptr<std::atomic<bool>> _given = std::make_shared<std::atomic<bool>>(false);
};

} // namespace nimbrel
