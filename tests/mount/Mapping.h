#pragma once

#include "config/UniqueFd.h"
#include "mount/Calls.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/types.h>
#include <unistd.h>

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

    // Store and load by way of a memory file: a page that can't be had is then an error, EFAULT or
    // a shorter piece, and not a signal that ends the test and leaves its disk mounted.
    void put(std::size_t offset, std::string_view data) const
    {
        const UniqueFd memory(must(::memfd_create("mapping", MFD_CLOEXEC), "memfd_create"));
        must(::pwrite(memory.get(), data.data(), data.size(), 0), "pwrite");
        expectAll(::pread(memory.get(), _data + offset, data.size(), 0), data.size());
    }
    [[nodiscard]] std::string take(std::size_t offset, std::size_t size) const
    {
        const UniqueFd memory(must(::memfd_create("mapping", MFD_CLOEXEC), "memfd_create"));
        expectAll(::pwrite(memory.get(), _data + offset, size, 0), size);
        std::string text(size, '\0');
        must(::pread(memory.get(), text.data(), size, 0), "pread");
        return text;
    }

private:
    static void expectAll(ssize_t done, std::size_t size)
    {
        if (static_cast<std::size_t>(must(done, "a mapped page")) != size)
            throw std::runtime_error("a mapped page can't be had");
    }

    char *_data = nullptr;
    std::size_t _size;
};

} // namespace nimbrel::test
