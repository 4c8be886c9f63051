#include "fs/NodeReclaimer.h"

#include "fs/AllSignalsBlocked.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

namespace nimbrel {

NodeReclaimer::NodeReclaimer(Drop drop) : _drop(std::move(drop)) {}

NodeReclaimer::~NodeReclaimer()
{
    stop();
}

std::size_t NodeReclaimer::room() const
{
    const std::lock_guard lock(_mutex);
    return _stopped ? 0 : mostWaiting - _waiting.size();
}

void NodeReclaimer::offer(std::vector<NodePlace> places)
{
    {
        const std::lock_guard lock(_mutex);
        if (_stopped || places.empty() || !isStarted())
            return;
        const std::size_t fitting = std::min(places.size(), mostWaiting - _waiting.size());
        const auto end = places.begin() + static_cast<std::ptrdiff_t>(fitting);
        std::move(places.begin(), end, std::back_inserter(_waiting));
    }
    _changed.notify_one();
}

// Without a thread the items stay known, and another offer tries again.
bool NodeReclaimer::isStarted()
{
    if (_thread.joinable())
        return true;
    const AllSignalsBlocked blocked;
    try {
        _thread = std::thread([this] { run(); });
    } catch (const std::system_error &) {
        return false;
    }
    return true;
}

void NodeReclaimer::run()
{
    std::unique_lock lock(_mutex);
    while (true) {
        _changed.wait(lock, [this] { return _stopped || !_waiting.empty(); });
        if (_stopped)
            return;
        const NodePlace place = std::move(_waiting.front());
        _waiting.pop_front();
        lock.unlock();
        (void)_drop(place.folder, place.name);
        lock.lock();
    }
}

void NodeReclaimer::stop()
{
    {
        const std::lock_guard lock(_mutex);
        _stopped = true;
        _waiting.clear();
    }
    _changed.notify_all();
    const std::lock_guard lock(_joining);
    if (_thread.joinable())
        _thread.join();
}

} // namespace nimbrel
