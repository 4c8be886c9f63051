#include "config/PreferencesLimits.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

std::optional<std::string> judged(std::string_view key, std::int64_t value)
{
    NBPreferencesDictionary preferences;
    preferences.set(key, value);
    return judgeLimits(preferences);
}

TEST(PreferencesLimitsTest, AbsentValuesAreDefaultsAndPass)
{
    EXPECT_EQ(judgeLimits({}), std::nullopt);
}

TEST(PreferencesLimitsTest, BlockSizeIsFrom16BytesTo64MiB)
{
    for (const std::int64_t size : {16, 4096, 1 << 26})
        EXPECT_EQ(judged(preferenceKey::blockSize, size), std::nullopt) << size;
    EXPECT_EQ(judged(preferenceKey::blockSize, 0),
              "The block size 0 is not from 16 to 67108864 bytes.");
    EXPECT_EQ(judged(preferenceKey::blockSize, -16),
              "The block size -16 is not from 16 to 67108864 bytes.");
    EXPECT_EQ(judged(preferenceKey::blockSize, 15),
              "The block size 15 is not from 16 to 67108864 bytes.");
    EXPECT_EQ(judged(preferenceKey::blockSize, (1 << 26) + 16),
              "The block size 67108880 is not from 16 to 67108864 bytes.");
}

TEST(PreferencesLimitsTest, IterationsAreFrom1To10Million)
{
    for (const std::int64_t count : {1, 5000, 10'000'000})
        EXPECT_EQ(judged(preferenceKey::kdfIterations, count), std::nullopt) << count;
    EXPECT_EQ(judged(preferenceKey::kdfIterations, 0),
              "The number of key iterations 0 is not from 1 to 10000000.");
    EXPECT_EQ(judged(preferenceKey::kdfIterations, -1),
              "The number of key iterations -1 is not from 1 to 10000000.");
    EXPECT_EQ(judged(preferenceKey::kdfIterations, 10'000'001),
              "The number of key iterations 10000001 is not from 1 to 10000000.");
}

TEST(PreferencesLimitsTest, DictionaryTellsTypesApart)
{
    NBPreferencesDictionary preferences;
    preferences.set("_x", true);
    EXPECT_EQ(preferences.boolean("_x"), true);
    EXPECT_EQ(preferences.integer("_x"), std::nullopt);
    EXPECT_EQ(preferences.text("_y"), std::nullopt);
}

} // namespace

} // namespace nimbrel::test
