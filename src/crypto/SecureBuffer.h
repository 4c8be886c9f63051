// Memory for keys and passphrases.
#pragma once

#include "crypto/Bytes.h"

#include <cstddef>
#include <string_view>

namespace nimbrel {

// Sets up the locked heap that SecureBuffer draws from, once a process. Locked memory isn't
// inherited over fork: a program that becomes a daemon calls this in the process that stays, before
// the first secret is read. Without it, or when it is full, buffers come from the ordinary heap;
// when the limit of locked memory is too low, it is there and may be swapped out. Wiped they are
// always.
void setUpSecureHeap();

// A fixed number of bytes, zero at first, wiped when it goes. Move-only: a secret isn't copied by
// accident.
class SecureBuffer final
{
public:
    SecureBuffer() noexcept = default;
    // Throws std::bad_alloc when there is no memory.
    explicit SecureBuffer(std::size_t size);
    ~SecureBuffer();
    SecureBuffer(SecureBuffer &&other) noexcept;
    SecureBuffer &operator=(SecureBuffer &&other) noexcept;
    SecureBuffer(const SecureBuffer &) = delete;
    SecureBuffer &operator=(const SecureBuffer &) = delete;

    [[nodiscard]] static SecureBuffer copyOf(ByteView bytes);
    [[nodiscard]] static SecureBuffer copyOf(std::string_view text);

    [[nodiscard]] std::size_t size() const noexcept { return _size; }
    [[nodiscard]] bool empty() const noexcept { return _size == 0; }
    [[nodiscard]] ByteSpan bytes() noexcept { return {_data, _size}; }
    [[nodiscard]] ByteView bytes() const noexcept { return {_data, _size}; }
    [[nodiscard]] std::string_view text() const noexcept { return textOf(bytes()); }

private:
    void release() noexcept;

    std::uint8_t *_data = nullptr;
    std::size_t _size = 0;
};

} // namespace nimbrel
