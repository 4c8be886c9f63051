// The folder's own configuration, with plain names in reach of every program.
#include "fs/guards/GuardedFolder.h"
#include "support/Files.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

class GuardedConfigurationTest : public testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        writeFile(stored, "the key");
        (void)folder.create("/other", "other");
    }
    void TearDown() override
    {
        EXPECT_EQ(readFile(stored), "the key");
        EXPECT_EQ(readFile(folder.store() + "/other").size(), 5U);
    }

    GuardedFolder folder{{.plainNames = true}};
    GuardedTree &tree = folder.tree();
    std::string path = "/" + GetParam();
    std::string stored = folder.store() + path;
};

} // namespace

TEST_P(GuardedConfigurationTest, IsOpenedForReadingOnly)
{
    EXPECT_TRUE(tree.open(path, O_RDONLY));
    for (const int flags : {O_WRONLY, O_RDWR, O_RDONLY | O_TRUNC, O_WRONLY | O_TRUNC | O_APPEND})
        EXPECT_EQ(tree.open(path, flags).code(), EPERM);
}

TEST_P(GuardedConfigurationTest, IsNotMadeAnew)
{
    EXPECT_EQ(tree.create(path, O_RDWR, 0600, thisUser()).code(), EPERM);
    EXPECT_EQ(tree.create(path, O_RDWR | O_TRUNC, 0600, thisUser()).code(), EPERM);
    EXPECT_EQ(tree.makeFolder(path, 0700, thisUser()).code(), EPERM);
    EXPECT_EQ(tree.makeNode(path, S_IFREG | 0600, 0, thisUser()).code(), EPERM);
    EXPECT_EQ(tree.makeLink(path, "other", thisUser()).code(), EPERM);
}

TEST_P(GuardedConfigurationTest, IsNotMovedReplacedOrExchanged)
{
    for (const unsigned flags : {0U, unsigned{RENAME_NOREPLACE}, unsigned{RENAME_EXCHANGE}}) {
        EXPECT_EQ(tree.move(path, "/away", flags).code(), EPERM);
        EXPECT_EQ(tree.move("/other", path, flags).code(), EPERM);
        EXPECT_EQ(tree.move(path, "/other", flags).code(), EPERM);
    }
}

TEST_P(GuardedConfigurationTest, IsNotLinkedOrRemoved)
{
    EXPECT_EQ(tree.hardLink(path, "/second").code(), EPERM);
    EXPECT_EQ(tree.hardLink("/other", path).code(), EPERM);
    EXPECT_EQ(tree.removeFile(path).code(), EPERM);
    EXPECT_NE(tree.removeFolder(path).code(), 0);
}

TEST_P(GuardedConfigurationTest, KeepsItsAttributes)
{
    NBItemAttributes attributes;
    attributes.posixPermissions = 0;
    EXPECT_EQ(tree.setAttributes(path, attributes).code(), EPERM);
    NBErrnoOr<NBFileHandle> file = tree.open(path, O_RDONLY);
    ASSERT_TRUE(file);
    EXPECT_EQ(tree.setAttributes(*file, attributes).code(), EPERM);
    EXPECT_EQ(tree.setExtendedAttribute(path, "user.x", bytesOf("x"), 0).code(), EPERM);
    EXPECT_EQ(tree.removeExtendedAttribute(path, "user.x").code(), EPERM);
    EXPECT_FALSE(folder.content().write(*file, bytesOf("x"), 0));
    EXPECT_FALSE(folder.content().setSize(*file, 0));
    EXPECT_FALSE(folder.content().allocate(*file, 0, 0, 100));
}

TEST_P(GuardedConfigurationTest, IsProtectedInTheRootAlone)
{
    ASSERT_TRUE(tree.makeFolder("/below", 0755, thisUser()));
    NBFileHandle file = folder.create("/below" + path, "text");
    EXPECT_TRUE(folder.content().append(file, bytesOf("more")));
    EXPECT_TRUE(tree.removeFile("/below" + path));
}

TEST_P(GuardedConfigurationTest, AnotherSpellingIsAnotherFileWhereTheStoreSaysSo)
{
    std::string spelled = path;
    std::transform(spelled.begin(), spelled.end(), spelled.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    // On a store that doesn't tell the cases apart it leads to the same file: here a hard link.
    ASSERT_EQ(::link(stored.c_str(), (folder.store() + spelled).c_str()), 0);
    EXPECT_EQ(tree.open(spelled, O_RDWR).code(), EPERM);
    EXPECT_EQ(tree.removeFile(spelled).code(), EPERM);
    ASSERT_EQ(::unlink((folder.store() + spelled).c_str()), 0);
    EXPECT_TRUE(tree.create(spelled, O_RDWR, 0600, thisUser()));
    EXPECT_TRUE(tree.removeFile(spelled));
}

INSTANTIATE_TEST_SUITE_P(Names, GuardedConfigurationTest,
                         testing::Values(".encfs6.xml", "Keyfile.nmx"), [](const auto &each) {
                             return each.param == "Keyfile.nmx" ? "Old" : "Present";
                         });

TEST(GuardedConfigurationModeTest, MissingIsNotMadeByTheUserEither)
{
    GuardedFolder folder{{.plainNames = true}};
    EXPECT_EQ(folder.tree().create("/.encfs6.xml", O_RDWR, 0600, thisUser()).code(), EPERM);
    EXPECT_EQ(folder.tree().open("/.encfs6.xml", O_RDONLY).code(), ENOENT);
}

TEST(GuardedConfigurationModeTest, NeedsNoProtectionWithEncryptedNames)
{
    GuardedFolder folder;
    writeFile(folder.store() + "/.encfs6.xml", "the key");
    (void)folder.create("/.encfs6.xml", "the user's");
    EXPECT_EQ(folder.readAt("/.encfs6.xml"), "the user's");
    EXPECT_EQ(readFile(folder.store() + "/.encfs6.xml"), "the key");
    EXPECT_TRUE(folder.tree().removeFile("/.encfs6.xml"));
}

} // namespace nimbrel::test
