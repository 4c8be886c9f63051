#include "fs/KeptListings.h"

#include <ctime>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

using namespace std::chrono_literals;

// A folder that was changed `age` ago, by a store that counts in nanoseconds.
struct stat changed(std::chrono::milliseconds age)
{
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const auto then =
        std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec) - age;
    struct stat attributes = {};
    attributes.st_mtim.tv_sec = std::chrono::floor<std::chrono::seconds>(then).count();
    attributes.st_mtim.tv_nsec = (then % 1s).count() | 1;
    attributes.st_ctim = attributes.st_mtim;
    attributes.st_size = 60;
    return attributes;
}

constexpr std::uint64_t number = 7;

} // namespace

TEST(KeptListingsTest, AFolderThatIsOpenedFirstIsRead)
{
    KeptListings listings;
    EXPECT_FALSE(listings.keeps(number, changed(1h)));
}

TEST(KeptListingsTest, AnUnchangedFolderIsKeptForASecond)
{
    KeptListings listings;
    const struct stat folder = changed(1h);
    const auto start = KeptListings::Clock::now();
    EXPECT_FALSE(listings.keeps(number, folder, start));
    EXPECT_TRUE(listings.keeps(number, folder, start + 999ms));
    EXPECT_FALSE(listings.keeps(number, folder, start + 1000ms));
    // The second counts from when it was read, not from when it was asked for.
    EXPECT_TRUE(listings.keeps(number, folder, start + 1500ms));
    EXPECT_FALSE(listings.keeps(number, folder, start + 2100ms));
}

TEST(KeptListingsTest, AChangedFolderIsReadAgain)
{
    KeptListings listings;
    EXPECT_FALSE(listings.keeps(number, changed(1h)));
    EXPECT_FALSE(listings.keeps(number, changed(1s)));
    struct stat grown = changed(1s);
    EXPECT_FALSE(listings.keeps(number, grown));
    grown.st_size += 20;
    EXPECT_FALSE(listings.keeps(number, grown));
}

// What was changed just now may change again without another time to show for it.
TEST(KeptListingsTest, AFolderThatWasChangedJustNowIsReadAgain)
{
    KeptListings listings;
    const struct stat folder = changed(0ms);
    EXPECT_FALSE(listings.keeps(number, folder));
    EXPECT_FALSE(listings.keeps(number, folder));
}

TEST(KeptListingsTest, AStoreThatCountsInSecondsIsGivenTwo)
{
    struct stat folder = changed(500ms);
    EXPECT_TRUE(isSettled(folder));
    folder.st_mtim.tv_nsec = 0;
    EXPECT_FALSE(isSettled(folder));
    folder.st_mtim.tv_sec -= 3;
    EXPECT_TRUE(isSettled(folder));
}

TEST(KeptListingsTest, FoldersAreKeptEachForItself)
{
    KeptListings listings;
    const struct stat folder = changed(1h);
    EXPECT_FALSE(listings.keeps(1, folder));
    EXPECT_FALSE(listings.keeps(2, folder));
    EXPECT_TRUE(listings.keeps(1, folder));
    EXPECT_TRUE(listings.keeps(2, folder));
}

} // namespace nimbrel::test
