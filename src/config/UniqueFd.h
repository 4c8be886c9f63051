#pragma once

#include <unistd.h>
#include <utility>

namespace nimbrel {

// Owns a file descriptor; -1 is none.
class UniqueFd final
{
public:
    UniqueFd() noexcept = default;
    explicit UniqueFd(int descriptor) noexcept : _descriptor(descriptor) {}
    ~UniqueFd() { reset(); }
    UniqueFd(UniqueFd &&other) noexcept : _descriptor(other.release()) {}
    UniqueFd &operator=(UniqueFd &&other) noexcept
    {
        if (this != &other)
            reset(other.release());
        return *this;
    }
    UniqueFd(const UniqueFd &) = delete;
    UniqueFd &operator=(const UniqueFd &) = delete;

    [[nodiscard]] int get() const noexcept { return _descriptor; }
    [[nodiscard]] explicit operator bool() const noexcept { return _descriptor >= 0; }
    [[nodiscard]] int release() noexcept { return std::exchange(_descriptor, -1); }
    void reset(int descriptor = -1) noexcept
    {
        if (_descriptor >= 0)
            ::close(_descriptor);
        _descriptor = descriptor;
    }

private:
    int _descriptor = -1;
};

} // namespace nimbrel
