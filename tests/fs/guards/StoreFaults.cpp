// This program's own pwrite, pread and fallocate stand before the C library's: with its checked
// variants of them they couldn't be defined here.
#undef _FORTIFY_SOURCE

#include "fs/guards/StoreFaults.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <optional>
#include <sys/syscall.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

struct WritePlan
{
    std::size_t room;
    int failures;
    int error;
    bool hasStruck = false;
};

// Tests are one thread; the delegate's other thread writes nothing.
std::optional<WritePlan> writePlan;
std::optional<std::int64_t> unreadable;
std::size_t mostRead = std::numeric_limits<std::size_t>::max();
std::optional<int> refusedModes;
std::size_t writes = 0;
std::size_t reads = 0;

int failWith(int error)
{
    errno = error;
    return -1;
}

// How much of `size` the next write may take; nothing when it fails.
std::optional<std::size_t> roomFor(std::size_t size)
{
    if (!writePlan || writePlan->failures < 0)
        return size;
    WritePlan &plan = *writePlan;
    if (plan.room == 0) {
        plan.hasStruck = true;
        if (plan.failures-- > 0)
            return std::nullopt;
        return size;
    }
    const std::size_t taken = std::min(plan.room, size);
    plan.room -= taken;
    plan.hasStruck = plan.hasStruck || taken < size;
    return taken;
}

} // namespace

WriteFault::WriteFault(std::size_t room, int failures, int error)
{
    writePlan = WritePlan{room, failures, error};
}

WriteFault::~WriteFault()
{
    writePlan.reset();
}

bool WriteFault::hasStruck() const
{
    return writePlan->hasStruck;
}

ReadFault::ReadFault(std::int64_t offset)
{
    unreadable = offset;
}

ReadFault::~ReadFault()
{
    unreadable.reset();
}

ShortReads::ShortReads(std::size_t most)
{
    mostRead = most;
}

ShortReads::~ShortReads()
{
    mostRead = std::numeric_limits<std::size_t>::max();
}

NoAllocation::NoAllocation(int modes)
{
    refusedModes = modes;
}

NoAllocation::~NoAllocation()
{
    refusedModes.reset();
}

std::size_t writeCalls()
{
    return writes;
}

std::size_t readCalls()
{
    return reads;
}

} // namespace nimbrel::test

extern "C" {

ssize_t pwrite(int descriptor, const void *bytes, size_t size, off_t offset)
{
    using namespace nimbrel::test;
    ++writes;
    const std::optional<std::size_t> room = roomFor(size);
    if (!room)
        return failWith(writePlan->error);
    return ::syscall(SYS_pwrite64, descriptor, bytes, *room, offset);
}

ssize_t pread(int descriptor, void *bytes, size_t size, off_t offset)
{
    using namespace nimbrel::test;
    ++reads;
    if (unreadable && *unreadable >= offset &&
        *unreadable < offset + static_cast<std::int64_t>(size))
        return failWith(EIO);
    return ::syscall(SYS_pread64, descriptor, bytes, std::min(size, mostRead), offset);
}

int fallocate(int descriptor, int mode, off_t offset, off_t length)
{
    using namespace nimbrel::test;
    if (refusedModes && (*refusedModes == 0 || (*refusedModes & mode) != 0))
        return failWith(EOPNOTSUPP);
    return static_cast<int>(::syscall(SYS_fallocate, descriptor, mode, offset, length));
}

} // extern "C"
