#include "fs/PathCache.h"

#include "fs/AllSignalsBlocked.h"

#include <system_error>

namespace nimbrel {

PathCache::PathCache(std::chrono::milliseconds interval) : _interval(interval)
{
    const AllSignalsBlocked blocked;
    try {
        _purger = std::thread([this] { run(); });
    } catch (const std::system_error &) {
        // No thread to be had: the cache works, and isn't purged.
        _purger = std::thread();
    }
}

PathCache::~PathCache()
{
    {
        const std::lock_guard lock(_stopMutex);
        _stopped = true;
    }
    _stopCondition.notify_all();
    if (_purger.joinable())
        _purger.join();
}

std::optional<std::string> PathCache::find(const std::string &path)
{
    const std::lock_guard lock(_mutex);
    const auto found = _paths.find(path);
    if (found == _paths.end())
        return std::nullopt;
    return found->second;
}

void PathCache::store(const std::string &path, const std::string &onDiskPath)
{
    const std::lock_guard lock(_mutex);
    _paths.insert_or_assign(path, onDiskPath);
}

std::size_t PathCache::size()
{
    const std::lock_guard lock(_mutex);
    return _paths.size();
}

void PathCache::purge()
{
    std::unordered_map<std::string, std::string> old; // freed without the lock
    const std::unique_lock lock(_mutex, std::try_to_lock);
    if (lock.owns_lock() && !_paths.empty())
        _paths.swap(old);
}

void PathCache::run()
{
    std::unique_lock lock(_stopMutex);
    while (!_stopCondition.wait_for(lock, _interval, [this] { return _stopped; })) {
        lock.unlock();
        purge();
        lock.lock();
    }
}

} // namespace nimbrel
