#pragma once

#include "support/TempFolder.h"

#include <cstdint>
#include <ostream>
#include <stdexcept>
#include <string>

namespace nimbrel::test {

enum class SmallVolumeKind
{
    Memory, // tmpfs
    Disk    // ext4 on a loop device
};

void PrintTo(SmallVolumeKind kind, std::ostream *stream);

// This machine or this user can't have one.
struct NoSmallVolume : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// A real file system of 16 MiB and 1,000 items, to fill up or to make read-only. Needs root. The
// disk whose encrypted folder lies on it must be gone before it.
class SmallVolume final
{
public:
    explicit SmallVolume(SmallVolumeKind kind); // throws NoSmallVolume
    ~SmallVolume();
    SmallVolume(const SmallVolume &) = delete;
    SmallVolume &operator=(const SmallVolume &) = delete;

    [[nodiscard]] const std::string &path() const noexcept { return _path; } // mount point
    [[nodiscard]] std::string makeFolder() const; // a new one, open to everybody; its path
    [[nodiscard]] std::uint64_t freeBytes() const;

    // Takes the space, down to the last `leaving` bytes (rounded up to the store's own units).
    void fill(std::uint64_t leaving = 0) const;
    void fillItems() const; // takes all items: none can be made any more
    void freeAll() const;   // gives back what the two took
    void makeReadOnly() const;

private:
    void takeSpace(std::size_t piece, std::uint64_t leaving) const;

    TempFolder _temp;
    std::string _path;
};

} // namespace nimbrel::test
