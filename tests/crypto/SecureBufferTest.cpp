#include "crypto/SecureBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <new>
#include <string>
#include <sys/resource.h>
#include <vector>

#include <openssl/crypto.h>

namespace nimbrel::test {

namespace {

SecureBuffer filled(std::size_t size, std::uint8_t value)
{
    SecureBuffer buffer(size);
    std::fill(buffer.bytes().begin(), buffer.bytes().end(), value);
    return buffer;
}

// The locked heap stays mapped, so that one may look at a piece that was given back. Its first
// bytes then belong to the heap's own lists.
bool stillHolds(const std::uint8_t *piece, std::size_t size, std::uint8_t value)
{
    return std::count(piece + 32, piece + size, value) > 8;
}

// The heap is set up once a process: its child process must be a fresh one.
void startOverInChild()
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
}

} // namespace

TEST(SecureBufferTest, IsZeroAtFirst)
{
    const SecureBuffer buffer(100);
    EXPECT_EQ(buffer.text(), std::string(100, '\0'));
}

TEST(SecureBufferTest, WithoutSizeIsEmpty)
{
    EXPECT_TRUE(SecureBuffer().empty());
    EXPECT_TRUE(SecureBuffer(0).empty());
    EXPECT_TRUE(SecureBuffer::copyOf(std::string_view()).empty());
    EXPECT_EQ(SecureBuffer().text(), "");
}

TEST(SecureBufferTest, CopiesBytesAndText)
{
    EXPECT_EQ(SecureBuffer::copyOf("pässword").text(), "pässword");
    const Bytes bytes = {0, 1, 255};
    EXPECT_EQ(SecureBuffer::copyOf(bytes).text(), textOf(bytes));
}

TEST(SecureBufferTest, MovingLeavesNothingBehind)
{
    SecureBuffer first = SecureBuffer::copyOf("secret");
    SecureBuffer second = std::move(first);
    EXPECT_EQ(second.text(), "secret");
    EXPECT_TRUE(first.empty()); // NOLINT: this is what is tested
    SecureBuffer third = SecureBuffer::copyOf("other");
    third = std::move(second);
    EXPECT_EQ(third.text(), "secret");
    EXPECT_TRUE(second.empty()); // NOLINT
}

TEST(SecureBufferTest, MovingToItselfKeepsTheBytes)
{
    SecureBuffer buffer = SecureBuffer::copyOf("secret");
    SecureBuffer &same = buffer;
    buffer = std::move(same);
    EXPECT_EQ(buffer.text(), "secret");
}

TEST(SecureBufferTest, MoreThanAllMemoryThrows)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer ends the process at such a request";
#endif
    EXPECT_THROW(SecureBuffer(std::numeric_limits<std::size_t>::max() / 2), std::bad_alloc);
}

TEST(SecureBufferTest, ComesFromTheLockedHeapWhereItIsSetUp)
{
    setUpSecureHeap();
    ASSERT_EQ(CRYPTO_secure_malloc_initialized(), 1);
    const SecureBuffer buffer(48);
    EXPECT_EQ(CRYPTO_secure_allocated(buffer.bytes().data()), 1);
}

TEST(SecureBufferTest, SettingTheHeapUpTwiceIsHarmless)
{
    setUpSecureHeap();
    const SecureBuffer before = SecureBuffer::copyOf("before");
    setUpSecureHeap();
    EXPECT_EQ(before.text(), "before");
    EXPECT_EQ(SecureBuffer::copyOf("after").text(), "after");
}

TEST(SecureBufferTest, AHeapThatWasSetUpElsewhereIsTaken)
{
    startOverInChild();
    const auto child = [] {
        if (CRYPTO_secure_malloc_init(4096, 16) == 0)
            ::_exit(1);
        setUpSecureHeap();
        ::_exit(SecureBuffer::copyOf("secret").text() == "secret" ? 0 : 2);
    };
    EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
}

TEST(SecureBufferTest, WorksWithoutAnyLockedMemory)
{
    startOverInChild();
    const auto child = [] {
        const rlimit none = {0, 0};
        if (::setrlimit(RLIMIT_MEMLOCK, &none) != 0)
            ::_exit(1);
        setUpSecureHeap();
        setUpSecureHeap();
        const SecureBuffer large = filled(100'000, 7);
        ::_exit(SecureBuffer::copyOf("secret").text() == "secret" && large.bytes()[99'999] == 7
                    ? 0
                    : 2);
    };
    EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
}

TEST(SecureBufferTest, AFullLockedHeapGivesOrdinaryMemory)
{
    setUpSecureHeap();
    std::vector<SecureBuffer> buffers;
    for (std::uint8_t i = 0; i < 64; ++i)
        buffers.push_back(filled(4096, i));
    EXPECT_TRUE(std::any_of(buffers.begin(), buffers.end(), [](const SecureBuffer &buffer) {
        return CRYPTO_secure_allocated(buffer.bytes().data()) == 0;
    }));
    for (std::uint8_t i = 0; i < 64; ++i)
        EXPECT_EQ(std::count(buffers[i].bytes().begin(), buffers[i].bytes().end(), i), 4096);
}

TEST(SecureBufferTest, IsWipedWhenItGoes)
{
    setUpSecureHeap();
    const std::uint8_t *piece = nullptr;
    {
        const SecureBuffer buffer = filled(256, 0xA7);
        piece = buffer.bytes().data();
        ASSERT_EQ(CRYPTO_secure_allocated(piece), 1);
        ASSERT_TRUE(stillHolds(piece, 256, 0xA7));
    }
    EXPECT_FALSE(stillHolds(piece, 256, 0xA7));
}

TEST(SecureBufferTest, IsWipedWhenAnotherTakesItsPlace)
{
    setUpSecureHeap();
    SecureBuffer buffer = filled(256, 0xA7);
    const std::uint8_t *piece = buffer.bytes().data();
    ASSERT_EQ(CRYPTO_secure_allocated(piece), 1);
    buffer = SecureBuffer(64);
    EXPECT_FALSE(stillHolds(piece, 256, 0xA7));
}

} // namespace nimbrel::test
