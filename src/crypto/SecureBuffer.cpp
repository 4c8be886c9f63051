#include "crypto/SecureBuffer.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <utility>

#include <openssl/crypto.h>

namespace nimbrel {

namespace {

// Room for some hundred keys and passphrases, and no more than the 64 KiB of locked memory that
// any user may have.
constexpr std::size_t secureHeapSize = 32768;
constexpr std::size_t smallestPiece = 32;

std::uint8_t *allocate(std::size_t size)
{
    if (size == 0)
        return nullptr;
    void *memory = OPENSSL_secure_zalloc(size);
    if (memory == nullptr) // the locked heap is full
        memory = OPENSSL_zalloc(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return static_cast<std::uint8_t *>(memory);
}

} // namespace

void setUpSecureHeap()
{
    static std::once_flag once;
    std::call_once(once, [] {
        // Without locked memory OpenSSL still gives a heap between guard pages, and without that
        // none: buffers work in every case, so the outcome changes nothing for the caller.
        if (CRYPTO_secure_malloc_initialized() == 0)
            (void)CRYPTO_secure_malloc_init(secureHeapSize, smallestPiece);
    });
}

SecureBuffer::SecureBuffer(std::size_t size) : _data(allocate(size)), _size(size) {}

SecureBuffer::~SecureBuffer()
{
    release();
}

SecureBuffer::SecureBuffer(SecureBuffer &&other) noexcept
    : _data(std::exchange(other._data, nullptr)), _size(std::exchange(other._size, 0))
{
}

SecureBuffer &SecureBuffer::operator=(SecureBuffer &&other) noexcept
{
    if (this != &other) {
        release();
        _data = std::exchange(other._data, nullptr);
        _size = std::exchange(other._size, 0);
    }
    return *this;
}

SecureBuffer SecureBuffer::copyOf(ByteView bytes)
{
    SecureBuffer copy(bytes.size());
    std::copy(bytes.begin(), bytes.end(), copy._data);
    return copy;
}

SecureBuffer SecureBuffer::copyOf(std::string_view text)
{
    return copyOf(bytesOf(text));
}

void SecureBuffer::release() noexcept
{
    // Wipes; takes pieces of both heaps.
    OPENSSL_secure_clear_free(_data, _size);
    _data = nullptr;
    _size = 0;
}

} // namespace nimbrel
