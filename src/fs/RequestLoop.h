// Who serves a disk.
#pragma once

#include "crypto/Bytes.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

struct fuse_session;

namespace nimbrel {

struct FuseDisk;

// Where one request is read, and what it asks for is put. The bytes of a write begin on a cache
// line: the cipher takes them at half its speed from anywhere else.
class RequestBuffer final
{
public:
    RequestBuffer();

    [[nodiscard]] void *data() const noexcept;
    [[nodiscard]] static std::size_t size() noexcept; // bytes, as many as libfuse reads at most
    // For a reply to a request that is no write: as many bytes as may be asked for.
    [[nodiscard]] ByteSpan reply() const noexcept;

private:
    struct Free
    {
        void operator()(std::byte *memory) const noexcept;
    };

    std::unique_ptr<std::byte, Free> _memory;
};

// Several threads wait for requests and one at a time serves its own: while that one works the next
// request is being taken, what was read is being given, and where a processor is awake there is a
// thread that runs on it.
class RequestLoop final
{
public:
    static constexpr std::size_t mostThreads = 4;

    RequestLoop(fuse_session *session, FuseDisk &disk) : _session(session), _disk(disk) {}

    // This thread and others, until the session ends: 0 after an unmount or fuse_session_exit, else
    // an errno. A thread that sleeps sees the session's end with its next request.
    [[nodiscard]] int run();

private:
    // One where there is one processor: it would only be handed from thread to thread.
    [[nodiscard]] static std::size_t threads() noexcept;
    [[nodiscard]] std::vector<std::jthread> startOthers();
    void serve(const RequestBuffer &buffer);

    fuse_session *_session;
    FuseDisk &_disk;
    std::mutex _oneAtATime;
    int _error = 0;
};

} // namespace nimbrel
