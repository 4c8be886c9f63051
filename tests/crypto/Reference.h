// The on-disk format written down in the plainest way, one step after the other, with OpenSSL's
// one-shot functions and its own CFB: what the fast paths are held against.
#pragma once

#include "crypto/Bytes.h"

#include <cstdint>

namespace nimbrel::test::reference {

struct Key
{
    Bytes data; // key bytes, then 16 bytes of vector material

    [[nodiscard]] ByteView cipherKey() const { return ByteView(data).first(data.size() - 16); }
    [[nodiscard]] ByteView material() const { return ByteView(data).last(16); }
};

enum class Direction
{
    Decrypt,
    Encrypt
};

[[nodiscard]] Bytes hmacSha1(ByteView key, ByteView data);
[[nodiscard]] std::uint64_t fold64(ByteView digest);
[[nodiscard]] std::uint64_t mac16(ByteView data, const Key &key);
[[nodiscard]] Bytes vectorOf(std::uint64_t seed, const Key &key);

[[nodiscard]] Bytes flipped(const Bytes &data);
[[nodiscard]] Bytes shuffled(const Bytes &data);
[[nodiscard]] Bytes unshuffled(const Bytes &data);

[[nodiscard]] Bytes cbc(const Bytes &data, ByteView vector, ByteView key, Direction direction);
[[nodiscard]] Bytes cfb(const Bytes &data, ByteView vector, ByteView key, Direction direction);
[[nodiscard]] Bytes stream(const Bytes &data, std::uint64_t seed, const Key &key,
                           Direction direction);
[[nodiscard]] Bytes run(const Bytes &data, std::size_t blockSize, std::uint64_t firstBlock,
                        const Key &key, Direction direction);

} // namespace nimbrel::test::reference
