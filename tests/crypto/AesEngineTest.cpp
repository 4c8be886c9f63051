// Every engine that this processor has, against known answers, the plain definition and each other.
#include "crypto/AesEngine.h"

#include "crypto/AesKernels.h"
#include "crypto/NistVectors.h"
#include "crypto/Reference.h"
#include "crypto/TestKeys.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

using reference::Direction;

class AesEngineTest : public testing::TestWithParam<EngineKind>
{
protected:
    void SetUp() override
    {
        if (GetParam() != EngineKind::Library && aesKernels(GetParam()) == nullptr)
            GTEST_SKIP() << "this processor doesn't have the instructions";
    }

    static std::unique_ptr<AesEngine> engineOf(ByteView key)
    {
        return AesEngine::make(key, GetParam());
    }

    static std::vector<Vector> noiseVectors(std::size_t count)
    {
        std::vector<Vector> vectors(count);
        for (std::size_t i = 0; i < count; ++i)
            std::ranges::copy(noiseBytes(cipherBlock, i + 99), vectors[i].begin());
        return vectors;
    }

    // Both ways, apart (behind some bytes, in front of others) and in place.
    static void expectReference(AesEngine &engine, ByteView key, std::size_t blockSize,
                                std::size_t count)
    {
        SCOPED_TRACE(testing::Message() << count << " blocks of " << blockSize);
        const std::vector<Vector> vectors = noiseVectors(count);
        const Bytes plain = noiseBytes(count * blockSize, blockSize + count);
        Bytes cipher;
        for (std::size_t i = 0; i < count; ++i) {
            const ByteView block = ByteView(plain).subspan(i * blockSize, blockSize);
            const Bytes part =
                reference::cbc({block.begin(), block.end()}, vectors[i], key, Direction::Encrypt);
            cipher.insert(cipher.end(), part.begin(), part.end());
        }
        constexpr std::size_t margin = 21;
        Bytes room(cipher.size() + 2 * margin, 0xEE);
        const auto crypted = [&](const Bytes &from, auto form) {
            EXPECT_TRUE((engine.*form)(from, blockSize, vectors, room.data() + margin));
            EXPECT_EQ(std::ranges::count(std::span(room).first(margin), 0xEE), margin);
            EXPECT_EQ(std::ranges::count(std::span(room).last(margin), 0xEE), margin);
            return Bytes(room.begin() + margin, room.end() - margin);
        };
        EXPECT_TRUE(crypted(plain, &AesEngine::encryptBlocks) == cipher);
        EXPECT_TRUE(crypted(cipher, &AesEngine::decryptBlocks) == plain);
        Bytes inPlace = plain;
        EXPECT_TRUE(engine.encryptBlocks(inPlace, blockSize, vectors, inPlace.data()));
        EXPECT_TRUE(inPlace == cipher);
        EXPECT_TRUE(engine.decryptBlocks(inPlace, blockSize, vectors, inPlace.data()));
        EXPECT_TRUE(inPlace == plain);
    }
};

std::string nameOf(const testing::TestParamInfo<EngineKind> &info)
{
    switch (info.param) {
    case EngineKind::Library:
        return "Library";
    case EngineKind::Processor:
        return "Processor";
    default:
        return "Wide";
    }
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Kinds, AesEngineTest,
                         testing::Values(EngineKind::Library, EngineKind::Processor,
                                         EngineKind::Wide),
                         nameOf);

TEST_P(AesEngineTest, ChainsGiveTheVectorsOfNist)
{
    for (const NistCase &expected : nist) {
        const std::unique_ptr<AesEngine> engine = engineOf(fromHex(expected.key));
        // The same chain once, twice and twenty times over.
        for (const std::size_t count : {1U, 2U, 20U}) {
            const std::vector<Vector> vectors(count, vectorOfHex(nistVector));
            std::string plain;
            std::string cipher;
            for (std::size_t i = 0; i < count; ++i) {
                plain += nistPlain;
                cipher += expected.cbc;
            }
            Bytes bytes = fromHex(plain);
            ASSERT_TRUE(engine->encryptBlocks(bytes, 64, vectors, bytes.data()));
            EXPECT_EQ(toHex(bytes), cipher);
            ASSERT_TRUE(engine->decryptBlocks(bytes, 64, vectors, bytes.data()));
            EXPECT_EQ(toHex(bytes), plain);
        }
    }
}

TEST_P(AesEngineTest, FeedbackGivesTheVectorsOfNist)
{
    for (const NistCase &expected : nist) {
        const std::unique_ptr<AesEngine> engine = engineOf(fromHex(expected.key));
        Bytes bytes = fromHex(nistPlain);
        ASSERT_TRUE(engine->encryptFeedback(bytes, vectorOfHex(nistVector)));
        EXPECT_EQ(toHex(bytes), expected.cfb);
        ASSERT_TRUE(engine->decryptFeedback(bytes, vectorOfHex(nistVector)));
        EXPECT_EQ(toHex(bytes), nistPlain);
    }
}

TEST_P(AesEngineTest, FeedbackIsTheLibrarysForEveryLength)
{
    for (const std::size_t keySize : {16U, 24U, 32U}) {
        const Bytes key = noiseBytes(keySize);
        const Vector vector = vectorOfHex(nistVector);
        const std::unique_ptr<AesEngine> engine = engineOf(key);
        for (std::size_t size = 0; size < 1100; ++size) {
            const Bytes plain = noiseBytes(size, size);
            Bytes bytes = plain;
            ASSERT_TRUE(engine->encryptFeedback(bytes, vector));
            ASSERT_EQ(bytes, reference::cfb(plain, vector, key, Direction::Encrypt)) << size;
            ASSERT_TRUE(engine->decryptFeedback(bytes, vector));
            ASSERT_EQ(bytes, plain) << size;
        }
    }
}

TEST_P(AesEngineTest, FeedbackTouchesNothingBehindItsData)
{
    const std::unique_ptr<AesEngine> engine = engineOf(noiseBytes(32));
    for (std::size_t size = 0; size < 300; ++size) {
        Bytes bytes(size + 64, 0xEE);
        ASSERT_TRUE(engine->encryptFeedback(ByteSpan(bytes).first(size), Vector{}));
        ASSERT_TRUE(engine->decryptFeedback(ByteSpan(bytes).first(size), Vector{}));
        EXPECT_EQ(bytes, Bytes(size + 64, 0xEE)) << size;
    }
}

TEST_P(AesEngineTest, OneToSixtyFourBlocks)
{
    for (const std::size_t keySize : {16U, 24U, 32U}) {
        const Bytes key = noiseBytes(keySize);
        const std::unique_ptr<AesEngine> engine = engineOf(key);
        for (std::size_t count = 1; count <= 64; ++count)
            expectReference(*engine, key, 272, count);
    }
}

TEST_P(AesEngineTest, EveryBlockSizeOfUpToATwoHundredAndFiftySixCipherBlocks)
{
    const Bytes key = noiseBytes(32);
    const std::unique_ptr<AesEngine> engine = engineOf(key);
    for (std::size_t blockSize = cipherBlock; blockSize <= 4096; blockSize += cipherBlock)
        for (const std::size_t count : {1U, 2U, 7U})
            expectReference(*engine, key, blockSize, count);
}

TEST_P(AesEngineTest, LargeBlocks)
{
    for (const std::size_t keySize : {16U, 24U, 32U}) {
        const Bytes key = noiseBytes(keySize);
        const std::unique_ptr<AesEngine> engine = engineOf(key);
        for (const std::size_t blockSize : {8192U, 16384U + 16U, 65536U - 48U, 65536U})
            for (const std::size_t count : {1U, 2U, 13U, 17U})
                expectReference(*engine, key, blockSize, count);
    }
}

TEST_P(AesEngineTest, NoBlocksAreHarmless)
{
    const std::unique_ptr<AesEngine> engine = engineOf(noiseBytes(16));
    EXPECT_TRUE(engine->encryptBlocks({}, 64, {}, nullptr));
    EXPECT_TRUE(engine->decryptBlocks({}, 64, {}, nullptr));
    EXPECT_TRUE(engine->encryptFeedback({}, Vector{}));
    EXPECT_TRUE(engine->decryptFeedback({}, Vector{}));
}

TEST_P(AesEngineTest, AKeyOfAnyOtherLengthGivesNoEngine)
{
    for (const std::size_t size : {0U, 1U, 8U, 15U, 17U, 20U, 31U, 33U, 64U})
        EXPECT_EQ(engineOf(noiseBytes(size)), nullptr) << size;
}

// FIPS 197, appendix A, and the example of its appendix B for the way back.
TEST_P(AesEngineTest, RoundKeysAreThoseOfTheStandard)
{
    if (GetParam() == EngineKind::Library)
        GTEST_SKIP() << "the library's are its own";
    const auto lastKeyOf = [](std::string_view key) {
        AesSchedule schedule{};
        aesKernels(GetParam())->expandKey(fromHex(key), schedule);
        return toHex(ByteView(schedule.encryption).subspan(schedule.rounds * 16, 16));
    };
    EXPECT_EQ(lastKeyOf("2b7e151628aed2a6abf7158809cf4f3c"), "d014f9a8c9ee2589e13f0cc8b6630ca6");
    EXPECT_EQ(lastKeyOf("8e73b0f7da0e6452c810f32b809079e562f8ead2522c6b7b"),
              "e98ba06f448c773c8ecc720401002202");
    EXPECT_EQ(lastKeyOf("603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4"),
              "fe4890d1e6188d0b046df344706c631e");
}

} // namespace nimbrel::test
