#include "fs/FuseDisk.h"
#include "fs/binding/NodeItems.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <set>

namespace nimbrel::test {

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
    table.nameRemoved(table.root(), "there");
    EXPECT_FALSE(folder.isLinked());
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

TEST(NodeTableTest, AnItemWithNamesInAFolderAndBelowItGoesWithBoth)
{
    NodeTable table;
    Node &outer = table.refer(table.root(), "outer", item(10, S_IFDIR));
    Node &inner = table.refer(outer, "inner", item(11, S_IFDIR));
    Node &file = table.refer(inner, "a", item(12));
    (void)table.refer(outer, "a", item(12));
    table.forget(outer.number, 1);
    table.forget(inner.number, 1);
    EXPECT_EQ(table.size(), 4U);
    table.forget(file.number, 2);
    EXPECT_EQ(table.size(), 1U);
}

TEST(NodeTableTest, AFolderThatOnlyItsItemKeepsStaysWhileAnotherTakesTheName)
{
    NodeTable table;
    Node &folder = table.refer(table.root(), "folder", item(10, S_IFDIR));
    const std::uint64_t first = table.refer(folder, "a", item(11)).number;
    table.forget(folder.number, 1);
    table.forget(first, 0);
    Node &second = table.refer(folder, "a", item(12));
    EXPECT_EQ(pathOf(table, second), "/folder/a");
    table.forget(second.number, 1);
    EXPECT_EQ(table.find(second.number), nullptr);
}

TEST(NodeTableTest, AMoveOntoItselfChangesNothing)
{
    NodeTable table;
    Node &file = table.refer(table.root(), "a", item(11));
    table.nameMoved(table.root(), "a", table.root(), "a");
    EXPECT_EQ(pathOf(table, file), "/a");
}

TEST(NodeTableTest, AMoveOntoAnotherNameOfTheItemLeavesThatName)
{
    NodeTable table;
    Node &file = table.refer(table.root(), "a", item(11));
    (void)table.refer(table.root(), "b", item(11));
    table.nameMoved(table.root(), "a", table.root(), "b");
    EXPECT_EQ(pathOf(table, file), "/b");
    table.nameRemoved(table.root(), "b");
    EXPECT_FALSE(file.isLinked());
}

TEST(NodeTableTest, AMoveOfAnUnknownNameTakesTheOtherAway)
{
    NodeTable table;
    Node &replaced = table.refer(table.root(), "b", item(11));
    table.nameMoved(table.root(), "never seen", table.root(), "b");
    EXPECT_EQ(table.pathOf(replaced).code(), ESTALE);
}

TEST(NodeTableTest, TwoNamesOfOneItemMayBeExchanged)
{
    NodeTable table;
    Node &file = table.refer(table.root(), "a", item(11));
    (void)table.refer(table.root(), "b", item(11));
    table.namesExchanged(table.root(), "a", table.root(), "b");
    table.nameRemoved(table.root(), "a");
    EXPECT_EQ(pathOf(table, file), "/b");
    table.nameRemoved(table.root(), "b");
    EXPECT_FALSE(file.isLinked());
}

TEST(NodeTableTest, AnExchangeWithAnUnknownNameForgetsBoth)
{
    NodeTable table;
    Node &file = table.refer(table.root(), "a", item(11));
    table.namesExchanged(table.root(), "a", table.root(), "never seen");
    EXPECT_EQ(table.pathOf(file).code(), ESTALE);
}

TEST(NodeTableTest, AnInodeThatChangedItsTypeTwiceIsAThirdItem)
{
    NodeTable table;
    const std::uint64_t file = table.refer(table.root(), "a", item(11)).number;
    (void)table.refer(table.root(), "b", item(11, S_IFDIR));
    EXPECT_NE(table.refer(table.root(), "a", item(11)).number, file);
}

TEST(NodeTableTest, ItemsOfTwoDevicesAreTwo)
{
    NodeTable table;
    struct stat elsewhere = item(11);
    elsewhere.st_dev = 8;
    const std::uint64_t here = table.refer(table.root(), "a", item(11)).number;
    EXPECT_NE(table.refer(table.root(), "b", elsewhere).number, here);
}

TEST(NodeTableTest, NumbersThatAreNobodysAreNotFound)
{
    NodeTable table;
    const std::uint64_t number = table.refer(table.root(), "a", item(11)).number;
    for (const std::uint64_t nobody :
         {std::uint64_t{0}, number + 1, number ^ (std::uint64_t{1} << 40U), number << 1U,
          ~std::uint64_t{0}})
        EXPECT_EQ(table.find(nobody), nullptr) << nobody;
}

TEST(NodeTableTest, NumbersAreNeverUsedTwice)
{
    NodeTable table;
    std::set<std::uint64_t> numbers;
    for (int round = 0; round < 1000; ++round) {
        const std::uint64_t number = table.refer(table.root(), "a", item(11)).number;
        EXPECT_TRUE(numbers.insert(number).second);
        table.forget(number, 1);
        EXPECT_EQ(table.find(number), nullptr);
    }
}

TEST(NodeTableTest, TheFolderAboveIsTheFirstNames)
{
    NodeTable table;
    Node &folder = table.refer(table.root(), "folder", item(10, S_IFDIR));
    Node &file = table.refer(folder, "a", item(11));
    EXPECT_EQ(&table.folderAbove(file), &folder);
    EXPECT_EQ(&table.folderAbove(folder), &table.root());
    EXPECT_EQ(&table.folderAbove(table.root()), &table.root());
    table.nameRemoved(folder, "a");
    EXPECT_EQ(&table.folderAbove(file), &file);
}

TEST(NodeTableTest, APathGoesIntoTheCallersString)
{
    NodeTable table;
    Node &folder = table.refer(table.root(), "Reports", item(10, S_IFDIR));
    std::string path(100, 'x');
    const char *const memory = path.data();
    ASSERT_TRUE(table.pathInto(folder, path));
    EXPECT_EQ(path, "/Reports");
    ASSERT_TRUE(table.pathInto(folder, "a.txt", path));
    EXPECT_EQ(path, "/Reports/a.txt");
    ASSERT_TRUE(table.pathInto(table.root(), "b", path));
    EXPECT_EQ(path, "/b");
    ASSERT_TRUE(table.pathInto(table.root(), path));
    EXPECT_EQ(path, "/");
    EXPECT_EQ(path.data(), memory);
    table.nameRemoved(table.root(), "Reports");
    EXPECT_EQ(table.pathInto(folder, path).code(), ESTALE);
    EXPECT_EQ(table.pathInto(folder, "a.txt", path).code(), ESTALE);
}

TEST(NodeTableTest, AnItemKnowsItsOpenFilesAndVersion)
{
    NodeTable table;
    OpenFile one;
    OpenFile two;
    Node &file = table.refer(table.root(), "a", item(11));
    struct stat attributes = item(11);
    attributes.st_size = 5;
    attributes.st_mtim = {12, 34};
    EXPECT_FALSE(file.isOpen());
    EXPECT_NE(file.version(), ContentVersion::of(attributes));
    file.setVersion(ContentVersion::of(attributes));
    table.opened(file, one);
    table.opened(file, two);
    EXPECT_EQ(file.openFiles(), (std::vector<OpenFile *>{&one, &two}));
    table.closed(file, one);
    table.closed(file, two);
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(file.version(), ContentVersion::of(attributes));
    attributes.st_mtim.tv_nsec = 35;
    EXPECT_NE(file.version(), ContentVersion::of(attributes));
}

TEST(NodeTableTest, AnOpenItemThatIsForgottenGoesWhenItIsClosed)
{
    NodeTable table;
    OpenFile open;
    Node &file = table.refer(table.root(), "a", item(11));
    const std::uint64_t number = file.number;
    table.opened(file, open);
    table.forget(number, 1);
    EXPECT_EQ(table.find(number), &file);
    table.closed(file, open);
    EXPECT_EQ(table.find(number), nullptr);
}

TEST(NodeTableTest, AVeryDeepFolderGoesWithItsLastItem)
{
    NodeTable table;
    std::vector<std::uint64_t> numbers;
    Node *folder = &table.root();
    for (ino_t inode = 10; inode < 100'010; ++inode) {
        folder = &table.refer(*folder, "d", item(inode, S_IFDIR));
        numbers.push_back(folder->number);
    }
    EXPECT_EQ(table.pathOf(*folder).code(), ESTALE); // no path is as long
    for (const std::uint64_t number : numbers)
        table.forget(number, 1);
    EXPECT_EQ(table.size(), 1U);
}

TEST(NodeTableTest, ManyItemsAreAllFoundAndAllGo)
{
    constexpr ino_t items = 20'000;
    NodeTable table;
    std::vector<std::uint64_t> numbers;
    for (ino_t inode = 0; inode < items; ++inode)
        numbers.push_back(
            table.refer(table.root(), "item " + std::to_string(inode), item(10 + inode)).number);
    for (ino_t inode = 0; inode < items; ++inode) {
        Node *const node = table.find(numbers[inode]);
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(node->inode, 10 + inode);
        EXPECT_EQ(pathOf(table, *node), "/item " + std::to_string(inode));
        EXPECT_EQ(&table.refer(table.root(), "item " + std::to_string(inode), item(10 + inode)),
                  node);
    }
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937(1));
    for (const std::uint64_t number : numbers)
        table.forget(number, 2);
    EXPECT_EQ(table.size(), 1U);
}

} // namespace nimbrel::test
