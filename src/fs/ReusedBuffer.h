#pragma once

#include "crypto/Bytes.h"

#include <cstddef>
#include <memory>
#include <new>
#include <optional>

namespace nimbrel {

// Scratch memory that is kept between calls: fresh memory for each request costs its page faults
// again and again, which halves the rate of reading.
class ReusedBuffer final
{
public:
    // `size` bytes that hold whatever the last use left, until the next take; nothing when there is
    // no memory.
    [[nodiscard]] std::optional<ByteSpan> take(std::size_t size)
    {
        if (size > _capacity) {
            _bytes.reset();
            _capacity = 0;
            _bytes.reset(new (std::nothrow) std::uint8_t[size]);
            if (_bytes == nullptr)
                return std::nullopt;
            _capacity = size;
        }
        return ByteSpan(_bytes.get(), size);
    }

private:
    std::unique_ptr<std::uint8_t[]> _bytes;
    std::size_t _capacity = 0;
};

} // namespace nimbrel
