#pragma once

#include "mount/Calls.h"

#include <cstddef>
#include <string_view>
#include <sys/mman.h>
#include <sys/types.h>

namespace nimbrel::test {

// A piece of a file mapped into memory.
class Mapping final
{
public:
    Mapping(int file, std::size_t size, int protection, int flags, off_t offset = 0) : _size(size)
    {
        void *data = ::mmap(nullptr, size, protection, flags, file, offset);
        must(data == MAP_FAILED ? -1 : 0, "mmap");
        _data = static_cast<char *>(data);
    }
    ~Mapping() { ::munmap(_data, _size); }
    Mapping(const Mapping &) = delete;
    Mapping &operator=(const Mapping &) = delete;

    [[nodiscard]] char *data() const noexcept { return _data; }
    [[nodiscard]] std::string_view text() const noexcept { return {_data, _size}; }
    void sync() const { must(::msync(_data, _size, MS_SYNC), "msync"); }

private:
    char *_data = nullptr;
    std::size_t _size;
};

} // namespace nimbrel::test
