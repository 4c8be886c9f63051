// Makes the kernel let go of items.
#pragma once

#include "fs/NodePlace.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace nimbrel {

// The kernel drops an entry under its folder's lock, for which it may wait until a request is done
// that the FUSE thread serves. So a thread of its own asks for that; it starts with the first
// offer, and most disks never need it.
class NodeReclaimer final
{
public:
    // Drops the kernel's entry `name` in `folder`: 0 or a negative errno. An entry that has gone
    // meanwhile is no harm, nor is one that can't be dropped: the item just stays known.
    // Throws nothing.
    using Drop = std::function<int(std::uint64_t folder, const std::string &name)>;

    static constexpr std::size_t mostWaiting = 4096; // places

    explicit NodeReclaimer(Drop drop);
    ~NodeReclaimer(); // stops
    NodeReclaimer(const NodeReclaimer &) = delete;
    NodeReclaimer &operator=(const NodeReclaimer &) = delete;

    // How many more places may wait. Neither this nor an offer waits for a drop.
    [[nodiscard]] std::size_t room() const;
    // What there is no room for is left out.
    void offer(std::vector<NodePlace> places);

    // Forgets what waits and comes back when the drop under way is done; offers from then on are
    // left out. From any thread, also from several. To be called where that drop can end: while the
    // FUSE thread serves, or when the connection is dead.
    void stop();

private:
    [[nodiscard]] bool isStarted();
    void run();

    const Drop _drop;
    mutable std::mutex _mutex; // never held over a drop
    std::condition_variable _changed;
    std::deque<NodePlace> _waiting;
    bool _stopped = false;
    std::mutex _joining;
    std::thread _thread; // last: it uses all of the above
};

} // namespace nimbrel
