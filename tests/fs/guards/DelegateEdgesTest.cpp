// What the delegate alone does to a file, and what the same calls do through the guard.
#include "fs/guards/GuardedFolder.h"
#include "fs/guards/StoreFaults.h"
#include "support/Files.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <linux/falloc.h>

namespace nimbrel::test {

namespace {

constexpr std::int64_t blockSize = 64;

// One folder, one file of it on two roads.
class DelegateEdgesTest : public testing::Test
{
protected:
    // The same file for both roads, made through the guard.
    void makeFile(const std::string &text)
    {
        guardedFile = folder.create("/guarded", text);
        ASSERT_EQ(folder.create("/bare", text).lastWriteError, 0);
        bareFile = *bare->openFileAtPath("/bare", O_RDWR);
    }
    [[nodiscard]] NBErrnoOr<std::size_t> bareWrite(const std::string &text, std::int64_t offset)
    {
        return bare->writeFileAtPath("/bare", bareFile, bytesOf(text), offset);
    }
    [[nodiscard]] NBErrnoOr<std::size_t> guardedWrite(const std::string &text, std::int64_t offset)
    {
        return folder.content().write(guardedFile, bytesOf(text), offset);
    }
    // What a program sees later.
    [[nodiscard]] std::string bareText() const { return folder.readAt("/bare"); }
    [[nodiscard]] std::string guardedText() const { return folder.readAt("/guarded"); }

    GuardedFolder folder{{.blockSize = blockSize}};
    std::unique_ptr<NBNimbrelFS> bare = folder.bareDelegate();
    NBFileHandle guardedFile;
    NBFileHandle bareFile;
};

} // namespace

TEST_F(DelegateEdgesTest, AWriteBehindTheEndSpoilsTheOldLastBlock)
{
    const std::string old = noise(100, 1);
    makeFile(old);
    ASSERT_TRUE(bareWrite("new", 300));
    EXPECT_NE(bareText().substr(64, 36), old.substr(64));
    ASSERT_TRUE(guardedWrite("new", 300));
    EXPECT_EQ(difference(old + std::string(200, '\0') + "new", guardedText()), "");
}

TEST_F(DelegateEdgesTest, AGapReadsAsNoise)
{
    makeFile("");
    ASSERT_TRUE(bareWrite("new", 2 * blockSize));
    std::string gap(static_cast<std::size_t>(2 * blockSize), '?');
    ASSERT_EQ(*bare->readFileAtPath("/bare", bareFile, spanOf(gap), 0), gap.size());
    EXPECT_NE(gap, std::string(gap.size(), '\0'));
    ASSERT_TRUE(guardedWrite("new", 2 * blockSize));
    EXPECT_EQ(difference(std::string(gap.size(), '\0') + "new", guardedText()), "");
}

TEST_F(DelegateEdgesTest, GrowingLeavesALastBlockThatReadsAsNoise)
{
    makeFile("");
    NBItemAttributes attributes;
    attributes.size = 2 * blockSize + 20;
    ASSERT_TRUE(bare->setAttributes(attributes, "/bare", &bareFile));
    EXPECT_NE(bareText().substr(static_cast<std::size_t>(2 * blockSize)), std::string(20, '\0'));
    ASSERT_TRUE(folder.content().setSize(guardedFile, 2 * blockSize + 20));
    EXPECT_EQ(
        difference(std::string(static_cast<std::size_t>(2 * blockSize + 20), '\0'), guardedText()),
        "");
}

TEST_F(DelegateEdgesTest, AReadFromInsideABlockPastTheEndFails)
{
    makeFile(noise(100, 2));
    std::string buffer(200, '?');
    EXPECT_EQ(bare->readFileAtPath("/bare", bareFile, spanOf(buffer), 10).code(), EIO);
    const NBErrnoOr<std::size_t> got = folder.content().read(guardedFile, spanOf(buffer), 10);
    ASSERT_TRUE(got);
    EXPECT_EQ(*got, 90U);
    EXPECT_EQ(buffer.substr(0, 90), noise(100, 2).substr(10));
}

TEST_F(DelegateEdgesTest, AFailedWriteIsReportedAsComplete)
{
    makeFile("");
    const std::string text = noise(100, 3);
    {
        const WriteFault fault(0, 1, ENOSPC);
        EXPECT_EQ(*bareWrite(text, 0), text.size());
    }
    EXPECT_EQ(bareText(), "");
    {
        const WriteFault fault(0, 1, ENOSPC);
        EXPECT_EQ(guardedWrite(text, 0).code(), ENOSPC);
    }
    EXPECT_EQ(guardedText(), "");
}

TEST_F(DelegateEdgesTest, ATornAppendTakesTheOldBytesOfItsBlock)
{
    const std::string old = noise(40, 4);
    makeFile(old);
    {
        const WriteFault fault(43, 1, ENOSPC);
        (void)bareWrite("appended", 40);
    }
    EXPECT_NE(bareText().substr(0, 40), old);
    {
        const WriteFault fault(43, 1, ENOSPC);
        EXPECT_EQ(guardedWrite("appended", 40).code(), ENOSPC);
    }
    EXPECT_EQ(difference(old, guardedText()), "");
}

TEST_F(DelegateEdgesTest, ACutOnATornStoreTakesTheLastBlock)
{
    const std::string old = noise(100, 5);
    makeFile(old);
    {
        NBItemAttributes attributes;
        attributes.size = 90;
        const WriteFault fault(5, 1, EIO);
        EXPECT_TRUE(bare->setAttributes(attributes, "/bare", &bareFile)); // says it's done
    }
    EXPECT_NE(bareText(), old.substr(0, 90));
    {
        const WriteFault fault(5, 1, EIO);
        EXPECT_EQ(folder.content().setSize(guardedFile, 90).code(), EIO);
    }
    EXPECT_EQ(guardedText().substr(0, 90), old.substr(0, 90));
}

TEST_F(DelegateEdgesTest, RemovingAFileTakesAWholeFolder)
{
    for (const std::string name : {"/one", "/two"}) {
        ASSERT_TRUE(folder.tree().makeFolder(name, 0755, thisUser()));
        (void)folder.create(name + "/inside", "text");
    }
    EXPECT_TRUE(bare->removeItemAtPath("/one"));
    EXPECT_EQ(folder.tree().attributes("/one").code(), ENOENT);
    EXPECT_EQ(folder.tree().removeFile("/two").code(), EISDIR);
    EXPECT_EQ(folder.readAt("/two/inside"), "text");
}

TEST_F(DelegateEdgesTest, MakingAFileCutsOneThatIsThere)
{
    makeFile("precious");
    ASSERT_TRUE(bare->createFileAtPath("/bare", 0644));
    EXPECT_EQ(bareText(), "");
    ASSERT_TRUE(folder.tree().create("/guarded", O_RDWR, 0644, thisUser()));
    EXPECT_EQ(guardedText(), "precious");
}

TEST_F(DelegateEdgesTest, AppendingDescriptorsIgnoreOffsets)
{
    makeFile("0123456789");
    bareFile = *bare->openFileAtPath("/bare", O_RDWR | O_APPEND);
    ASSERT_TRUE(bareWrite("xx", 0));
    EXPECT_NE(bareText(), "xx23456789");
    guardedFile = folder.open("/guarded", O_RDWR | O_APPEND);
    ASSERT_TRUE(guardedWrite("xx", 0));
    EXPECT_EQ(guardedText(), "xx23456789");
}

TEST_F(DelegateEdgesTest, AnUnreadableFolderListsAsEmpty)
{
    EXPECT_TRUE(bare->contentsOfDirectoryAtPath("/missing").names.empty());
    EXPECT_EQ(folder.list("/missing").code(), ENOENT);
}

TEST_F(DelegateEdgesTest, ALinksSizeIsThatOfItsStoredTarget)
{
    ASSERT_TRUE(folder.tree().makeLink("/link", "target", thisUser()));
    EXPECT_NE(bare->attributesOfItemAtPath("/link")->st_size, 6);
    EXPECT_EQ(folder.tree().attributes("/link")->st_size, 6);
}

} // namespace nimbrel::test
