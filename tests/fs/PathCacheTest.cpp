#include "fs/PathCache.h"
#include "support/Process.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

constexpr auto atOnce = std::chrono::milliseconds(1);

TEST(PathCacheTest, KnowsWhatWasStored)
{
    PathCache cache;
    EXPECT_FALSE(cache.find("/a"));
    cache.store("/a", "/store/x");
    cache.store("/a/", "/store/y");
    EXPECT_EQ(cache.find("/a"), "/store/x");
    EXPECT_EQ(cache.find("/a/"), "/store/y");
    EXPECT_EQ(cache.size(), 2U);
}

TEST(PathCacheTest, AnEntryIsReplaced)
{
    PathCache cache;
    cache.store("/a", "/store/x");
    cache.store("/a", "/store/z");
    EXPECT_EQ(cache.find("/a"), "/store/z");
    EXPECT_EQ(cache.size(), 1U);
}

TEST(PathCacheTest, APurgeTakesEverythingAlsoWhatWasJustUsed)
{
    PathCache cache;
    cache.store("/a", "/store/x");
    cache.store("/b", "/store/y");
    EXPECT_TRUE(cache.find("/a"));
    cache.purge();
    EXPECT_EQ(cache.size(), 0U);
    EXPECT_FALSE(cache.find("/a"));
}

TEST(PathCacheTest, APurgeOfNothingIsHarmless)
{
    PathCache cache;
    cache.purge();
    EXPECT_EQ(cache.size(), 0U);
}

TEST(PathCacheTest, TheThreadPurgesAgainAndAgain)
{
    PathCache cache(atOnce);
    for (int round = 0; round < 3; ++round) {
        cache.store("/a", "/store/x");
        EXPECT_TRUE(eventually([&] { return cache.size() == 0; }));
    }
}

TEST(PathCacheTest, UseGoesOnDuringPurges)
{
    PathCache cache(atOnce);
    for (int round = 0; round < 50000; ++round) {
        const std::string path = "/" + std::to_string(round % 100);
        cache.store(path, "/store" + path);
        const std::optional<std::string> found = cache.find(path);
        ASSERT_TRUE(!found || *found == "/store" + path);
    }
}

// Hours, if an end waited for the next purge.
TEST(PathCacheTest, ItsEndDoesNotWaitForThePurge)
{
    for (int round = 0; round < 500; ++round) {
        PathCache cache;
        cache.store("/a", "/store/x");
    }
}

} // namespace

} // namespace nimbrel::test
