#include "fs/OpenFolder.h"

#include "fs/guards/GuardedFolder.h"
#include "support/Files.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <unistd.h>

namespace nimbrel::test {

namespace {

OpenFolder opened(const GuardedFolder &folder)
{
    return OpenFolder(*GuardedListing::open(folder.delegate(), "/"));
}

// The next `most` entries, as one reply takes them; the one behind them was looked at, too.
std::vector<NBDirectoryEntry> taken(OpenFolder &open, std::size_t most)
{
    std::vector<NBDirectoryEntry> entries;
    for (;;) {
        const NBErrnoOr<const NBDirectoryEntry *> entry = open.peek();
        EXPECT_EQ(entry.code(), 0);
        if (*entry == nullptr || entries.size() == most)
            return entries;
        entries.push_back(**entry);
        open.take();
    }
}

std::vector<std::string> namesOf(const std::vector<NBDirectoryEntry> &entries)
{
    std::vector<std::string> names;
    for (const NBDirectoryEntry &entry : entries)
        names.push_back(entry.name);
    return names;
}

void fill(const GuardedFolder &folder, int count)
{
    for (int i = 0; i < count; ++i)
        (void)folder.create("/file-" + std::to_string(i));
}

} // namespace

TEST(OpenFolderTest, GivesEachEntryOnceInPieces)
{
    const GuardedFolder folder;
    fill(folder, 50);
    OpenFolder open = opened(folder);
    std::multiset<std::string> seen;
    off_t place = 0;
    for (;;) {
        open.moveTo(place);
        const auto entries = taken(open, 7);
        if (entries.empty())
            break;
        for (const std::string &name : namesOf(entries))
            seen.insert(name);
        place = entries.back().next;
    }
    EXPECT_EQ(seen.size(), 52U); // "." and ".." with them
    EXPECT_EQ(std::set<std::string>(seen.begin(), seen.end()).size(), 52U);
}

// The kernel took less than it was given, and something was removed since.
TEST(OpenFolderTest, GoesBackWithoutTheStore)
{
    const GuardedFolder folder;
    fill(folder, 20);
    OpenFolder open = opened(folder);
    open.moveTo(0);
    const auto given = taken(open, 12);
    ASSERT_EQ(given.size(), 12U);
    for (std::size_t i = 0; i < 4; ++i)
        (void)folder.tree().removeFile("/" + given[i].name); // "." and ".." refuse
    open.moveTo(given[3].next);
    const auto again = taken(open, 8);
    EXPECT_EQ(namesOf(again), namesOf({given.begin() + 4, given.end()}));
}

TEST(OpenFolderTest, AnyPlaceThatWasToldIsFoundAgain)
{
    const GuardedFolder folder;
    fill(folder, 30);
    OpenFolder open = opened(folder);
    open.moveTo(0);
    const auto all = taken(open, 100);
    for (std::size_t i = 0; i + 1 < all.size(); i += 5) {
        open.moveTo(all[i].next);
        EXPECT_EQ(taken(open, 1).front().name, all[i + 1].name);
    }
    open.moveTo(all.back().next);
    EXPECT_TRUE(taken(open, 1).empty());
}

TEST(OpenFolderTest, TheBeginningIsTheFolderAsItIsNow)
{
    const GuardedFolder folder;
    fill(folder, 3);
    OpenFolder open = opened(folder);
    open.moveTo(0);
    EXPECT_EQ(taken(open, 100).size(), 5U);
    (void)folder.create("/later");
    open.moveTo(0);
    const auto names = namesOf(taken(open, 100));
    EXPECT_EQ(names.size(), 6U);
    EXPECT_NE(std::find(names.begin(), names.end(), "later"), names.end());
}

} // namespace nimbrel::test
