#include "crypto/VectorTable.h"

#include "crypto/Reference.h"
#include "crypto/TestKeys.h"

#include <gtest/gtest.h>

#include <limits>

namespace nimbrel::test {

namespace {

constexpr std::uint64_t lastSeed = std::numeric_limits<std::uint64_t>::max();

Bytes bytesOfVector(const Vector &vector)
{
    return {vector.begin(), vector.end()};
}

// Asked twice: derived the first time, kept or derived again the second.
void expectReferenceFrom(std::uint64_t first)
{
    const reference::Key key{noiseKeyData(256)};
    const NBEncryptionKey ours = keyWithData(key.data);
    VectorTable table;
    for (int round = 0; round < 2; ++round) {
        std::array<Vector, 10> vectors;
        table.fill(first, vectors, ours);
        for (std::uint64_t i = 0; i < vectors.size(); ++i)
            EXPECT_EQ(bytesOfVector(vectors[i]), reference::vectorOf(first + i, key)) << first + i;
    }
}

} // namespace

TEST(VectorTableTest, TheFirstSeedsHaveTheirVectors)
{
    expectReferenceFrom(0);
}

TEST(VectorTableTest, SeedsAroundTheTablesEndHaveTheirVectors)
{
    expectReferenceFrom(65531);
}

TEST(VectorTableTest, SeedsBeyondTheTableHaveTheirVectors)
{
    expectReferenceFrom(65536);
    expectReferenceFrom(std::uint64_t{1} << 40U);
}

TEST(VectorTableTest, SeedsWrapToZero)
{
    expectReferenceFrom(lastSeed - 4);
}

TEST(VectorTableTest, AStreamTakesTheVectorsOfItsSeedAndTheNext)
{
    const reference::Key key{noiseKeyData(192)};
    const NBEncryptionKey ours = keyWithData(key.data);
    VectorTable table;
    for (const std::uint64_t seed : {std::uint64_t{0}, std::uint64_t{65535}, lastSeed}) {
        const StreamVectors vectors = table.ofStream(seed, ours);
        EXPECT_EQ(bytesOfVector(vectors.ofSeed), reference::vectorOf(seed, key));
        EXPECT_EQ(bytesOfVector(vectors.ofNextSeed), reference::vectorOf(seed + 1, key));
    }
}

} // namespace nimbrel::test
