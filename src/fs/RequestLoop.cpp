#include "fs/RequestLoop.h"

#include "fs/AllSignalsBlocked.h"
#include "fs/FuseRequest.h"
#include "fs/FuseTransport.h"

#include <algorithm>
#include <cerrno>
#include <linux/fuse.h>
#include <new>
#include <sched.h>
#include <system_error>
#include <unistd.h>

namespace nimbrel {

namespace {

constexpr std::size_t cacheLine = 64;
constexpr std::size_t alignment = 4096;
constexpr std::size_t mostPages = 256;   // of one request, as libfuse has it
constexpr std::size_t headerRoom = 4096; // and what comes before them
constexpr std::size_t writeHeader = sizeof(fuse_in_header) + sizeof(fuse_write_in);
constexpr std::size_t lead = (cacheLine - writeHeader % cacheLine) % cacheLine;

} // namespace

RequestBuffer::RequestBuffer()
    : _memory(static_cast<std::byte *>(::operator new (lead + size(), std::align_val_t{alignment})))
{
}

void *RequestBuffer::data() const noexcept
{
    return _memory.get() + lead;
}

std::size_t RequestBuffer::size() noexcept
{
    return mostPages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) + headerRoom;
}

ByteSpan RequestBuffer::reply() const noexcept
{
    return {reinterpret_cast<std::uint8_t *>(_memory.get()) + headerRoom, size() - headerRoom};
}

void RequestBuffer::Free::operator()(std::byte *memory) const noexcept
{
    ::operator delete (memory, std::align_val_t{alignment});
}

std::size_t RequestLoop::threads() noexcept
{
    cpu_set_t processors; // that this process may use, not those of the machine
    const bool isKnown = ::sched_getaffinity(0, sizeof processors, &processors) == 0;
    return isKnown && CPU_COUNT(&processors) == 1 ? 1 : mostThreads;
}

int RequestLoop::run()
{
    {
        const std::vector<std::jthread> others = startOthers();
        serve(RequestBuffer());
    }
    return _error;
}

// Fewer of them, or none, where the system has no more threads or memory.
std::vector<std::jthread> RequestLoop::startOthers()
{
    const AllSignalsBlocked blocked;
    std::vector<std::jthread> others;
    try {
        while (others.size() + 1 < threads())
            others.emplace_back([this, buffer = RequestBuffer()] { serve(buffer); });
    } catch (const std::system_error &) {
        return others;
    } catch (const std::bad_alloc &) {
        return others;
    }
    return others;
}

void RequestLoop::serve(const RequestBuffer &buffer)
{
    fuse_buf request{};
    request.mem = buffer.data();
    while (fuse_session_exited(_session) == 0) {
        const int got = fuse_session_receive_buf(_session, &request);
        if (got == -EINTR)
            continue;
        std::unique_lock turn(_oneAtATime);
        if (got <= 0) {
            _error = std::max(_error, -got);
            return;
        }
        noteRequest({static_cast<const std::uint8_t *>(request.mem), static_cast<std::size_t>(got)},
                    _disk);
        _disk.turn = &turn;
        _disk.reply = buffer.reply();
        fuse_session_process_buf(_session, &request);
    }
}

} // namespace nimbrel
