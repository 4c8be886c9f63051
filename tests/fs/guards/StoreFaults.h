// Faults of a store that no real part gives on demand.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nimbrel::test {

// While it lives, this process's pwrite calls take `room` bytes, the last one a part of what it is
// given; then `failures` calls fail with `error`, and after them the store is well again. One at a
// time.
class WriteFault final
{
public:
    WriteFault(std::size_t room, int failures, int error);
    ~WriteFault();
    WriteFault(const WriteFault &) = delete;
    WriteFault &operator=(const WriteFault &) = delete;

    // Whether a call was cut short or failed.
    [[nodiscard]] bool hasStruck() const;
};

// While it lives, pread calls that touch the byte at `offset` fail with EIO.
class ReadFault final
{
public:
    explicit ReadFault(std::int64_t offset);
    ~ReadFault();
    ReadFault(const ReadFault &) = delete;
    ReadFault &operator=(const ReadFault &) = delete;
};

// While it lives, pread calls give `most` bytes at most.
class ShortReads final
{
public:
    explicit ShortReads(std::size_t most);
    ~ShortReads();
    ShortReads(const ShortReads &) = delete;
    ShortReads &operator=(const ShortReads &) = delete;
};

// While it lives, fallocate calls with any of the bits `modes` fail with EOPNOTSUPP; with 0 all do.
class NoAllocation final
{
public:
    explicit NoAllocation(int modes = 0);
    ~NoAllocation();
    NoAllocation(const NoAllocation &) = delete;
    NoAllocation &operator=(const NoAllocation &) = delete;
};

// How many calls of pwrite and pread this process has made.
[[nodiscard]] std::size_t writeCalls();
[[nodiscard]] std::size_t readCalls();

} // namespace nimbrel::test
