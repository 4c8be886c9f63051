// Plain paths and the on-disk paths they lead to.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <unordered_map>

namespace nimbrel {

// Emptied as a whole every 30 seconds by a thread of its own, which skips its turn when the cache
// is in use and never holds a file operation up. No entry goes stale: a path's encoded form is a
// function of the path and the key alone.
class PathCache final
{
public:
    // `interval` is for tests.
    explicit PathCache(std::chrono::milliseconds interval = std::chrono::seconds(30));
    ~PathCache();
    PathCache(const PathCache &) = delete;
    PathCache &operator=(const PathCache &) = delete;

    [[nodiscard]] std::optional<std::string> find(const std::string &path);
    void store(const std::string &path, const std::string &onDiskPath);
    [[nodiscard]] std::size_t size();
    void purge(); // what the thread does every 30 seconds

private:
    void run();

    const std::chrono::milliseconds _interval;
    std::mutex _mutex; // held for an access alone, never over a cipher's work
    std::unordered_map<std::string, std::string> _paths;
    std::mutex _stopMutex;
    std::condition_variable _stopCondition;
    bool _stopped = false;
    std::thread _purger; // last: it uses all of the above
};

} // namespace nimbrel
