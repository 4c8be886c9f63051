#include "crypto/GrowingPiece.h"

#include "crypto/ByteManipulations.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace nimbrel::test {

namespace {

// A piece and its ways into the stream form: by itself, and behind whatever came before.
class GrowingPieceTest : public testing::TestWithParam<std::size_t>
{
protected:
    GrowingPieceTest() : _contexts(CipherContexts::forKey(random(GetParam()))) {}

    Bytes random(std::size_t size)
    {
        Bytes bytes(size);
        std::ranges::generate(bytes, [&] { return static_cast<std::uint8_t>(_generator()); });
        return bytes;
    }

    // What the form gives, without memory of anything.
    Bytes expected(Bytes data, const StreamVectors &vectors)
    {
        EXPECT_TRUE(encryptStream(data, vectors, *_contexts));
        return data;
    }

    void expectSame(GrowingPiece &piece, const Bytes &plain, std::uint64_t seed,
                    const StreamVectors &vectors)
    {
        Bytes data = plain;
        EXPECT_TRUE(piece.encrypt(data, seed, vectors, *_contexts));
        EXPECT_EQ(data, expected(plain, vectors)) << plain.size();
    }

    StreamVectors vectors()
    {
        StreamVectors vectors{};
        std::ranges::copy(random(cipherBlock), vectors.ofSeed.begin());
        std::ranges::copy(random(cipherBlock), vectors.ofNextSeed.begin());
        return vectors;
    }

    std::mt19937_64 _generator{7};
    std::unique_ptr<CipherContexts> _contexts;
};

} // namespace

TEST_P(GrowingPieceTest, GrownByAnyLengthIsWhatItWouldBeAtOnce)
{
    const StreamVectors vectors = this->vectors();
    const Bytes whole = random(20'000);
    for (const std::size_t step : {1U, 15U, 16U, 63U, 64U, 65U, 100U, 128U, 1000U}) {
        GrowingPiece piece;
        for (std::size_t size = 0; size <= std::min<std::size_t>(whole.size(), 40 * step + 200);
             size += step)
            expectSame(piece, Bytes(whole.begin(), whole.begin() + static_cast<long>(size)), 5,
                       vectors);
    }
}

TEST_P(GrowingPieceTest, AChangeAnywhereIsSeen)
{
    const StreamVectors vectors = this->vectors();
    Bytes plain = random(500);
    GrowingPiece piece;
    for (std::size_t at = 0; at < plain.size(); at += 7) {
        expectSame(piece, plain, 5, vectors);
        plain[at] = static_cast<std::uint8_t>(plain[at] + 1);
        expectSame(piece, plain, 5, vectors);
    }
}

TEST_P(GrowingPieceTest, AShorterPieceIsNoContinuation)
{
    const StreamVectors vectors = this->vectors();
    const Bytes plain = random(400);
    GrowingPiece piece;
    for (const std::size_t size : {400U, 399U, 320U, 64U, 63U, 0U, 1U, 400U})
        expectSame(piece, Bytes(plain.begin(), plain.begin() + static_cast<long>(size)), 5,
                   vectors);
}

TEST_P(GrowingPieceTest, AnotherBlocksPieceIsNoContinuation)
{
    const StreamVectors one = vectors();
    const StreamVectors other = vectors();
    const Bytes plain = random(400);
    GrowingPiece piece;
    for (int i = 0; i < 3; ++i) {
        expectSame(piece, plain, 5, one);
        expectSame(piece, plain, 6, other);
    }
}

TEST_P(GrowingPieceTest, VeryLongPiecesAreTakenAsTheyCome)
{
    const StreamVectors vectors = this->vectors();
    const Bytes plain = random(40'000);
    GrowingPiece piece;
    for (const std::size_t size : {16'000U, 16'384U, 16'385U, 40'000U, 16'000U, 16'100U})
        expectSame(piece, Bytes(plain.begin(), plain.begin() + static_cast<long>(size)), 5,
                   vectors);
}

TEST_P(GrowingPieceTest, RandomWorkGivesWhatTheFormGives)
{
    const std::array<StreamVectors, 2> vectors = {this->vectors(), this->vectors()};
    GrowingPiece piece;
    Bytes plain;
    for (int i = 0; i < 3000; ++i) {
        switch (_generator() % 4) {
        case 0:
            plain.resize(_generator() % (plain.size() + 1));
            break;
        case 1:
            if (!plain.empty())
                plain[_generator() % plain.size()] ^= 1;
            break;
        default: {
            const Bytes more = random(_generator() % 200);
            plain.insert(plain.end(), more.begin(), more.end());
        }
        }
        const std::size_t seed = _generator() % 8 == 0 ? 1 : 0;
        expectSame(piece, plain, seed, vectors.at(seed));
    }
}

INSTANTIATE_TEST_SUITE_P(KeySizes, GrowingPieceTest, testing::Values(16, 24, 32));

} // namespace nimbrel::test
