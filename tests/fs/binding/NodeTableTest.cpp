#include "fs/NodeTable.h"

#include "fs/FuseDisk.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

struct stat item(ino_t inode, mode_t type = S_IFREG)
{
    struct stat attributes = {};
    attributes.st_dev = 7;
    attributes.st_ino = inode;
    attributes.st_mode = type | 0644U;
    return attributes;
}

std::string pathOf(const NodeTable &table, const Node &node)
{
    const auto path = table.pathOf(node);
    return path ? *path : "error " + std::to_string(path.code());
}

} // namespace

TEST(NodeTableTest, TheRootIsAlwaysThere)
{
    NodeTable table;
    EXPECT_EQ(table.find(1), &table.root());
    EXPECT_EQ(pathOf(table, table.root()), "/");
    table.forget(1, 1000);
    EXPECT_EQ(table.find(1), &table.root());
}

TEST(NodeTableTest, APathIsMadeOfTheNamesAboveIt)
{
    NodeTable table;
    Node &folder = table.refer(table.root(), "Reports", item(10, S_IFDIR));
    Node &file = table.refer(folder, "a.txt", item(11));
    EXPECT_EQ(pathOf(table, file), "/Reports/a.txt");
    EXPECT_EQ(*table.pathOf(folder, "b"), "/Reports/b");
    EXPECT_EQ(*table.pathOf(table.root(), "b"), "/b");
}

TEST(NodeTableTest, HardLinksShareANode)
{
    NodeTable table;
    Node &first = table.refer(table.root(), "a", item(11));
    Node &second = table.refer(table.root(), "b", item(11));
    EXPECT_EQ(&first, &second);
    table.nameRemoved(table.root(), "b");
    EXPECT_EQ(pathOf(table, first), "/a");
}

TEST(NodeTableTest, ANodeWithoutANameIsStale)
{
    NodeTable table;
    Node &file = table.refer(table.root(), "a", item(11));
    table.nameRemoved(table.root(), "a");
    EXPECT_EQ(table.pathOf(file).code(), ESTALE);
}

TEST(NodeTableTest, AnItemNumberThatIsUsedAgainGetsANewNode)
{
    NodeTable table;
    const std::uint64_t first = table.refer(table.root(), "a", item(11)).number;
    table.nameRemoved(table.root(), "a");
    const std::uint64_t second = table.refer(table.root(), "b", item(11)).number;
    EXPECT_NE(first, second);
}

TEST(NodeTableTest, AnItemThatIsHeldOpenKeepsItsNode)
{
    NodeTable table;
    OpenFile open;
    Node &node = table.refer(table.root(), "a", item(11));
    table.opened(node, open);
    table.nameRemoved(table.root(), "a");
    EXPECT_EQ(&table.refer(table.root(), "other link", item(11)), &node);
    table.closed(node, open);
}

TEST(NodeTableTest, AnItemOfAnotherTypeGetsANewNode)
{
    NodeTable table;
    Node &file = table.refer(table.root(), "a", item(11));
    Node &folder = table.refer(table.root(), "b", item(11, S_IFDIR));
    EXPECT_NE(&file, &folder);
}

TEST(NodeTableTest, AMovedFolderTakesWhatIsBelowAlong)
{
    NodeTable table;
    Node &folder = table.refer(table.root(), "old", item(10, S_IFDIR));
    Node &file = table.refer(folder, "a", item(11));
    Node &other = table.refer(table.root(), "other", item(12, S_IFDIR));
    table.nameMoved(table.root(), "old", other, "new");
    EXPECT_EQ(pathOf(table, file), "/other/new/a");
}

TEST(NodeTableTest, AMovedItemIsStillOneNodeUnderASecondName)
{
    NodeTable table;
    Node &moved = table.refer(table.root(), "a", item(11));
    table.nameMoved(table.root(), "a", table.root(), "b");
    EXPECT_EQ(&table.refer(table.root(), "c", item(11)), &moved);
}

TEST(NodeTableTest, AMoveTakesTheNameOfWhatWasThere)
{
    NodeTable table;
    Node &moved = table.refer(table.root(), "a", item(11));
    Node &replaced = table.refer(table.root(), "b", item(12));
    table.nameMoved(table.root(), "a", table.root(), "b");
    EXPECT_EQ(pathOf(table, moved), "/b");
    EXPECT_EQ(table.pathOf(replaced).code(), ESTALE);
}

TEST(NodeTableTest, ExchangedNamesLeadToEachOther)
{
    NodeTable table;
    Node &folder = table.refer(table.root(), "folder", item(10, S_IFDIR));
    Node &one = table.refer(table.root(), "one", item(11));
    Node &two = table.refer(folder, "two", item(12));
    table.namesExchanged(table.root(), "one", folder, "two");
    EXPECT_EQ(pathOf(table, one), "/folder/two");
    EXPECT_EQ(pathOf(table, two), "/one");
    table.nameRemoved(folder, "two");
    EXPECT_EQ(table.pathOf(one).code(), ESTALE);
}

TEST(NodeTableTest, ForgottenNodesGoWithTheFoldersThatOnlyTheyKept)
{
    NodeTable table;
    Node &outer = table.refer(table.root(), "outer", item(10, S_IFDIR));
    Node &inner = table.refer(outer, "inner", item(11, S_IFDIR));
    Node &file = table.refer(inner, "file", item(12));
    const std::uint64_t number = file.number;
    table.forget(outer.number, 1);
    table.forget(inner.number, 1);
    EXPECT_EQ(table.size(), 4U);
    EXPECT_EQ(pathOf(table, file), "/outer/inner/file");
    table.forget(number, 1);
    EXPECT_EQ(table.size(), 1U);
    EXPECT_EQ(table.find(number), nullptr);
}

TEST(NodeTableTest, ANodeStaysForEachReference)
{
    NodeTable table;
    Node &file = table.refer(table.root(), "a", item(11));
    (void)table.refer(table.root(), "a", item(11));
    table.forget(file.number, 1);
    EXPECT_EQ(table.find(file.number), &file);
    table.forget(file.number, 5);
    EXPECT_EQ(table.size(), 1U);
}

TEST(NodeTableTest, AFolderThatMovedOutsideHasItsNewestName)
{
    NodeTable table;
    Node &folder = table.refer(table.root(), "here", item(10, S_IFDIR));
    (void)table.refer(table.root(), "there", item(10, S_IFDIR));
    EXPECT_EQ(pathOf(table, folder), "/there");
    EXPECT_EQ(folder.names.size(), 1U);
}

TEST(NodeTableTest, FoldersMovedIntoEachOtherAreStaleAndDoNotHang)
{
    NodeTable table;
    Node &one = table.refer(table.root(), "one", item(10, S_IFDIR));
    Node &two = table.refer(one, "two", item(11, S_IFDIR));
    (void)table.refer(two, "one", item(10, S_IFDIR));
    EXPECT_EQ(table.pathOf(one).code(), ESTALE);
    (void)table.refer(table.root(), "one", item(10, S_IFDIR));
    EXPECT_EQ(pathOf(table, two), "/one/two");
}

TEST(NodeTableTest, TwoNamesInOneFolderGoTogether)
{
    NodeTable table;
    Node &folder = table.refer(table.root(), "folder", item(10, S_IFDIR));
    Node &file = table.refer(folder, "a", item(11));
    (void)table.refer(folder, "b", item(11));
    table.forget(folder.number, 1);
    table.forget(file.number, 2);
    EXPECT_EQ(table.size(), 1U);
}

} // namespace nimbrel::test
