#include "fs/FuseDisk.h"
#include "fs/binding/NodeItems.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nimbrel::test {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

constexpr std::size_t many = 1000;

// Files "1", "2"... in the root, with inodes to match.
void referFiles(NodeTable &table, ino_t first, ino_t last)
{
    for (ino_t inode = first; inode <= last; ++inode)
        (void)table.refer(table.root(), std::to_string(inode), item(100 + inode));
}

// The names alone, of several calls, since each goes only so far.
std::vector<std::string> offered(NodeTable &table, std::size_t most = many)
{
    std::vector<std::string> names;
    for (const NodePlace &place : table.reclaimable(most))
        names.push_back(place.name);
    return names;
}

} // namespace

TEST(NodeTableReclaimingTest, NothingIsOfferedUntilThereAreTooMany)
{
    NodeTable table(4);
    referFiles(table, 1, 3); // the root is one, too
    EXPECT_THAT(offered(table), IsEmpty());
    referFiles(table, 4, 4);
    EXPECT_THAT(offered(table), ElementsAre("1"));
}

TEST(NodeTableReclaimingTest, TheOldestGoFirst)
{
    NodeTable table(4);
    referFiles(table, 1, 6);
    EXPECT_THAT(offered(table), ElementsAre("1", "2", "3"));
}

TEST(NodeTableReclaimingTest, AnOfferNamesTheFolderAndTheNameThere)
{
    NodeTable table(2);
    Node &folder = table.refer(table.root(), "folder", item(10, S_IFDIR));
    (void)table.refer(folder, "a", item(11));
    EXPECT_THAT(table.reclaimable(many), ElementsAre(NodePlace{folder.number, "a"}));
}

TEST(NodeTableReclaimingTest, OnlySoManyAreOfferedAtOnce)
{
    NodeTable table(4);
    referFiles(table, 1, 8);
    EXPECT_THAT(offered(table, 2), ElementsAre("1", "2"));
    EXPECT_THAT(offered(table, 2), ElementsAre("3", "4"));
    EXPECT_THAT(offered(table, 0), IsEmpty());
}

TEST(NodeTableReclaimingTest, WhatIsOfferedIsNotOfferedAgainAtOnce)
{
    NodeTable table(4);
    referFiles(table, 1, 5);
    EXPECT_THAT(offered(table), ElementsAre("1", "2"));
    EXPECT_THAT(offered(table), IsEmpty());
    referFiles(table, 6, 6);
    EXPECT_THAT(offered(table), ElementsAre("3"));
}

TEST(NodeTableReclaimingTest, WhatWasLookedUpAgainGetsASecondChance)
{
    NodeTable table(4);
    referFiles(table, 1, 4);
    referFiles(table, 1, 1);
    EXPECT_THAT(offered(table), ElementsAre("2"));
    referFiles(table, 5, 7);
    EXPECT_THAT(offered(table), ElementsAre("3", "4", "5"));
}

TEST(NodeTableReclaimingTest, WhatTheKernelAskedAboutGetsASecondChance)
{
    NodeTable table(4);
    const std::uint64_t number = table.refer(table.root(), "0", item(100)).number;
    referFiles(table, 1, 3);
    (void)table.find(number);
    EXPECT_THAT(offered(table), ElementsAre("1"));
}

TEST(NodeTableReclaimingTest, AnOfferedItemThatIsLookedUpCountsAgain)
{
    NodeTable table(4);
    referFiles(table, 1, 4);
    EXPECT_THAT(offered(table), ElementsAre("1"));
    referFiles(table, 1, 1);
    EXPECT_THAT(offered(table), ElementsAre("2"));
}

TEST(NodeTableReclaimingTest, AnOfferedItemThatIsForgottenMakesRoom)
{
    NodeTable table(4);
    const std::uint64_t number = table.refer(table.root(), "0", item(100)).number;
    referFiles(table, 1, 3);
    EXPECT_THAT(offered(table), ElementsAre("0"));
    table.forget(number, 1);
    EXPECT_THAT(offered(table), IsEmpty());
    referFiles(table, 4, 4);
    EXPECT_THAT(offered(table), ElementsAre("1"));
}

TEST(NodeTableReclaimingTest, WhatTheKernelKeptIsOfferedAgainARoundLater)
{
    NodeTable table(2);
    referFiles(table, 1, 3);
    EXPECT_THAT(offered(table), ElementsAre("1", "2"));
    referFiles(table, 3, 4);
    EXPECT_THAT(offered(table), ElementsAre("4"));
    referFiles(table, 3, 4);
    EXPECT_THAT(offered(table), ElementsAre("1", "2"));
}

TEST(NodeTableReclaimingTest, AnOpenItemIsNotOffered)
{
    NodeTable table(2);
    OpenFile open;
    Node &file = table.refer(table.root(), "0", item(100));
    table.opened(file, open);
    referFiles(table, 1, 1);
    EXPECT_THAT(offered(table), ElementsAre("1"));
    table.closed(file, open);
    referFiles(table, 2, 2);
    EXPECT_THAT(offered(table), ElementsAre("2"));
    referFiles(table, 2, 2);
    EXPECT_THAT(offered(table), ElementsAre("0"));
}

TEST(NodeTableReclaimingTest, AnItemWithoutANameIsNotOffered)
{
    NodeTable table(2);
    referFiles(table, 1, 2);
    table.nameRemoved(table.root(), "1");
    EXPECT_THAT(offered(table), ElementsAre("2"));
}

TEST(NodeTableReclaimingTest, EachNameOfAnItemIsOffered)
{
    NodeTable table(1);
    (void)table.refer(table.root(), "a", item(11));
    (void)table.refer(table.root(), "b", item(11));
    EXPECT_THAT(offered(table), IsEmpty()); // its second lookup
    EXPECT_THAT(offered(table), UnorderedElementsAre("a", "b"));
}

TEST(NodeTableReclaimingTest, AFolderWithKnownItemsIsNotOffered)
{
    NodeTable table(2);
    Node &folder = table.refer(table.root(), "folder", item(10, S_IFDIR));
    const std::uint64_t number = table.refer(folder, "a", item(11)).number;
    EXPECT_THAT(offered(table), ElementsAre("a"));
    table.forget(number, 1);
    referFiles(table, 1, 1);
    EXPECT_THAT(offered(table), ElementsAre("folder"));
}

TEST(NodeTableReclaimingTest, FoldersAreOfferedOnlyWhereTheyAreMostOfTheItems)
{
    NodeTable table(8);
    for (ino_t inode = 10; inode < 15; ++inode)
        (void)table.refer(table.root(), "folder " + std::to_string(inode), item(inode, S_IFDIR));
    referFiles(table, 1, 4);
    EXPECT_THAT(offered(table), ElementsAre("1", "2"));
    (void)table.refer(table.root(), "folder 15", item(15, S_IFDIR)); // with the root seven of eight
    EXPECT_THAT(offered(table), ElementsAre("3"));
    referFiles(table, 3, 4);
    EXPECT_THAT(offered(table), ElementsAre("folder 15"));
    referFiles(table, 3, 4);
    EXPECT_THAT(offered(table), IsEmpty());
    referFiles(table, 5, 5);
    EXPECT_THAT(offered(table), ElementsAre("5"));
    referFiles(table, 5, 5);
    EXPECT_THAT(offered(table), ElementsAre("folder 10"));
}

TEST(NodeTableReclaimingTest, LongNamesLeaveRoomForFewerItems)
{
    NodeTable table;
    const std::string longName(250, 'x');
    for (ino_t inode = 0; inode < 60'000; ++inode)
        (void)table.refer(table.root(), longName + std::to_string(inode), item(10 + inode));
    EXPECT_EQ(table.reclaimable(many).size(), many);
}

TEST(NodeTableReclaimingTest, ATableThatIsReclaimedStaysNearItsLimit)
{
    constexpr std::size_t kept = 1000;
    NodeTable table(kept);
    std::size_t most = 0;
    for (ino_t inode = 0; inode < 20'000; ++inode) {
        (void)table.refer(table.root(), std::to_string(inode), item(10 + inode));
        for (const NodePlace &place : table.reclaimable(64)) {
            const Node &gone =
                table.refer(table.root(), place.name, item(10 + std::stoul(place.name)));
            table.forget(gone.number, 2);
        }
        most = std::max(most, table.size());
    }
    EXPECT_LE(most, kept + 1);
}

} // namespace nimbrel::test
