#include "crypto/HmacSha1.h"

#include "crypto/Reference.h"
#include "crypto/TestKeys.h"
#include "support/Files.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

Bytes bytesOfDigest(const MacDigest &digest)
{
    return {digest.begin(), digest.end()};
}

Bytes bytesOfVector(const Vector &vector)
{
    return {vector.begin(), vector.end()};
}

Bytes startOfCode(const Bytes &key, Bytes text, std::uint64_t number)
{
    for (unsigned shift = 0; shift < 64; shift += 8)
        text.push_back(static_cast<std::uint8_t>(number >> shift));
    Bytes code = reference::hmacSha1(key, text);
    code.resize(16);
    return code;
}

} // namespace

TEST(HmacSha1Test, CodesOfRfc2202)
{
    HmacSha1 first(Bytes(20, 0x0B));
    EXPECT_EQ(toHex(first.digest(bytesOf("Hi There"))), "b617318655057264e28bc0b6fb378c8ef146be00");
    HmacSha1 second(bytesOf("Jefe"));
    EXPECT_EQ(toHex(second.digest(bytesOf("what do ya want for nothing?"))),
              "effcdf6ae5eb2fa2d27416d5f184df9c259a7c79");
    HmacSha1 third(Bytes(20, 0xAA));
    EXPECT_EQ(toHex(third.digest(Bytes(50, 0xDD))), "125d7342b9ac11cd91a39af48aa17b4f63f175d3");
}

TEST(HmacSha1Test, EveryLengthIsTheLibrarys)
{
    for (const std::size_t keySize : {1U, 16U, 24U, 32U, 63U, 64U}) {
        const Bytes key = noiseBytes(keySize);
        HmacSha1 mac(key);
        for (std::size_t size = 0; size <= 300; ++size) {
            const Bytes text = noiseBytes(size, size);
            ASSERT_EQ(bytesOfDigest(mac.digest(text)), reference::hmacSha1(key, text)) << size;
        }
    }
}

TEST(HmacSha1Test, TheCodeOfTwoPartsIsThatOfBothJoined)
{
    const Bytes key = noiseBytes(24);
    HmacSha1 mac(key);
    for (const std::size_t size : {0U, 24U, 55U, 56U, 64U, 100U, 200U}) {
        const Bytes text = noiseBytes(size);
        const Bytes expected = reference::hmacSha1(key, text);
        for (std::size_t cut = 0; cut <= size; ++cut)
            EXPECT_EQ(
                bytesOfDigest(mac.digest(ByteView(text).first(cut), ByteView(text).subspan(cut))),
                expected)
                << cut;
    }
}

// Up to three registers of numbers, with and without registers, over the ends of 32 and 64 bits.
TEST(HmacSha1Test, NumberedCodesAreTheLibrarysForEveryCount)
{
    const Bytes key = noiseBytes(32);
    const Bytes material = noiseBytes(16, 5);
    for (const EngineKind kind : {EngineKind::Library, fastestEngine()}) {
        HmacSha1 mac(key, kind);
        for (const std::uint64_t first :
             {std::uint64_t{0}, (std::uint64_t{1} << 32U) - 9, std::uint64_t{0} - 9}) {
            for (std::size_t count = 0; count <= 40; ++count) {
                std::vector<Vector> starts(count);
                mac.numbered(material, first, starts);
                for (std::size_t i = 0; i < count; ++i)
                    ASSERT_EQ(bytesOfVector(starts[i]), startOfCode(key, material, first + i))
                        << count << " " << i;
            }
        }
    }
}

TEST(HmacSha1Test, NumberedCodesTakeMaterialOfAnyLength)
{
    const Bytes key = noiseBytes(16);
    HmacSha1 mac(key);
    for (const std::size_t size : {0U, 15U, 17U, 70U}) {
        const Bytes material = noiseBytes(size);
        std::array<Vector, 20> starts;
        mac.numbered(material, 7, starts);
        for (std::size_t i = 0; i < starts.size(); ++i)
            EXPECT_EQ(bytesOfVector(starts[i]), startOfCode(key, material, 7 + i));
    }
}

} // namespace nimbrel::test
