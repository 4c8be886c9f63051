#include "fs/OrdinaryRights.h"
#include "fs/TestDelegate.h"
#include "support/Files.h"

#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

NBItemAttributes permissions(mode_t mode)
{
    return {.posixPermissions = mode};
}

mode_t modeOf(const std::string &path)
{
    struct stat status = {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

TEST(NamesTest, AnEmptyFolderListsAsEmpty)
{
    for (const bool encrypted : {false, true}) {
        const TestDelegate delegate(4096, encrypted);
        const NBDirectoryListing listing = delegate->contentsOfDirectoryAtPath("/");
        EXPECT_THAT(listing.names, IsEmpty());
        EXPECT_EQ(listing.error, 0);
    }
}

TEST(NamesTest, AListingGivesPlainNames)
{
    for (const bool encrypted : {false, true}) {
        const TestDelegate delegate(4096, encrypted);
        delegate.create("/a.txt");
        ASSERT_TRUE(delegate->createDirectoryAtPath("/Ü b", {}));
        delegate.create("/Ü b/c");
        EXPECT_THAT(delegate->contentsOfDirectoryAtPath("/").names,
                    UnorderedElementsAre("a.txt", "Ü b"));
        EXPECT_THAT(delegate->contentsOfDirectoryAtPath("/Ü b").names, UnorderedElementsAre("c"));
    }
}

// Kept: who lists what can't be read sees nothing, and the error beside it.
TEST(NamesTest, AnUnreadableFolderListsAsEmptyWithItsError)
{
    const TestDelegate delegate;
    delegate.create("/file");
    const NBDirectoryListing missing = delegate->contentsOfDirectoryAtPath("/missing");
    EXPECT_THAT(missing.names, IsEmpty());
    EXPECT_EQ(missing.error, ENOENT);
    const NBDirectoryListing file = delegate->contentsOfDirectoryAtPath("/file");
    EXPECT_THAT(file.names, IsEmpty());
    EXPECT_EQ(file.error, ENOTDIR);
}

TEST(NamesTest, AFolderWithoutPermissionListsAsEmptyWithItsError)
{
    const OrdinaryRights rights;
    const TestDelegate delegate;
    ASSERT_TRUE(delegate->createDirectoryAtPath("/folder", permissions(0700)));
    delegate.create("/folder/file");
    ASSERT_TRUE(delegate->setAttributes(permissions(0), "/folder", nullptr));
    const NBDirectoryListing listing = delegate->contentsOfDirectoryAtPath("/folder");
    EXPECT_THAT(listing.names, IsEmpty());
    EXPECT_EQ(listing.error, EACCES);
    ASSERT_TRUE(delegate->setAttributes(permissions(0700), "/folder", nullptr));
}

TEST(NamesTest, EncryptedNamesHideAllThatDoesNotDecodeAtEveryDepth)
{
    const TestDelegate delegate;
    ASSERT_TRUE(delegate->createDirectoryAtPath("/folder", {}));
    delegate.create("/folder/file");
    for (const std::string &folder : {delegate.root(), delegate.onDisk("/folder")})
        for (const char *name : {".encfs6.xml", "Keyfile.nmx", "notes.txt", "x", "a-b,c"})
            writeFile(folder + "/" + name, "stray");
    EXPECT_THAT(delegate->contentsOfDirectoryAtPath("/").names, UnorderedElementsAre("folder"));
    EXPECT_THAT(delegate->contentsOfDirectoryAtPath("/folder").names, UnorderedElementsAre("file"));
    EXPECT_EQ(delegate->openFileAtPath("/notes.txt", O_RDONLY).code(), ENOENT);
    EXPECT_EQ(readFile(delegate.root() + "/notes.txt"), "stray");
}

TEST(NamesTest, PlainNamesHideTheFoldersOwnFilesInTheRootAlone)
{
    const TestDelegate delegate(4096, false);
    ASSERT_TRUE(delegate->createDirectoryAtPath("/folder", {}));
    for (const char *folder : {"/", "/folder/"})
        for (const char *name : {".encfs6.xml", "Keyfile.nmx", "other"})
            writeFile(delegate.root() + folder + name, "");
    EXPECT_THAT(delegate->contentsOfDirectoryAtPath("/").names,
                UnorderedElementsAre("folder", "other"));
    EXPECT_THAT(delegate->contentsOfDirectoryAtPath("/folder").names,
                UnorderedElementsAre(".encfs6.xml", "Keyfile.nmx", "other"));
}

// Kept: nothing but the listing guards it; the binding does.
TEST(NamesTest, WithPlainNamesTheConfigurationOpensByItsPath)
{
    const TestDelegate delegate(4096, false);
    writeFile(delegate.root() + "/.encfs6.xml", "<xml/>");
    EXPECT_TRUE(delegate->openFileAtPath("/.encfs6.xml", O_RDWR));
    EXPECT_TRUE(delegate->attributesOfItemAtPath("/.encfs6.xml"));
}

TEST(NamesTest, AFolderIsMadeWithItsPermissions)
{
    const TestDelegate delegate;
    ASSERT_TRUE(delegate->createDirectoryAtPath("/a", permissions(0700)));
    EXPECT_EQ(modeOf(delegate.onDisk("/a")), 0700U);
    ASSERT_TRUE(delegate->createDirectoryAtPath("/b", {}));
    EXPECT_EQ(modeOf(delegate.onDisk("/b")), 0755U);
}

TEST(NamesTest, AFolderIsMadeWithItsOtherAttributes)
{
    const TestDelegate delegate;
    ASSERT_TRUE(delegate->createDirectoryAtPath(
        "/a", {.owner = ::geteuid(), .modificationDate = timespec{1000, 7}}));
    const auto status = delegate->attributesOfItemAtPath("/a");
    EXPECT_EQ(status->st_mtim.tv_sec, 1000);
    EXPECT_EQ(status->st_uid, ::geteuid());
}

TEST(NamesTest, NoFolderIsMadeOnTheWay)
{
    const TestDelegate delegate;
    EXPECT_EQ(delegate->createDirectoryAtPath("/a/b", {}).code(), ENOENT);
    ASSERT_TRUE(delegate->createDirectoryAtPath("/a", {}));
    EXPECT_EQ(delegate->createDirectoryAtPath("/a", {}).code(), EEXIST);
}

TEST(NamesTest, CreatingAnExistingFileEmptiesIt)
{
    const TestDelegate delegate;
    delegate.create("/a", "content");
    const NBErrnoOr<NBFileHandle> again = delegate->createFileAtPath("/a", 0600);
    ASSERT_TRUE(again);
    EXPECT_EQ(sizeOf(*again), 0);
    EXPECT_EQ(modeOf(delegate.onDisk("/a")), 0644U); // of the first creation
}

TEST(NamesTest, AFileIsMadeWithThe16BitsOfItsPermissions)
{
    const TestDelegate delegate;
    ASSERT_TRUE(delegate->createFileAtPath("/a", 0x10000 | 0640));
    EXPECT_EQ(modeOf(delegate.onDisk("/a")), 0640U);
}

TEST(NamesTest, AFileCanBeMadeExclusively)
{
    const TestDelegate delegate;
    delegate.create("/a", "content");
    EXPECT_EQ(delegate->createFileAtPath("/a", 0644, O_EXCL).code(), EEXIST);
    EXPECT_EQ(delegate.contentAt("/a"), "content");
    EXPECT_EQ(delegate->createFileAtPath("/no/a", 0644).code(), ENOENT);
}

TEST(NamesTest, DescriptorsAreNotHandedToChildren)
{
    const TestDelegate delegate;
    const NBFileHandle made = delegate.create("/a");
    const NBFileHandle opened = delegate.open("/a");
    for (const NBFileHandle *file : {&made, &opened})
        EXPECT_EQ(::fcntl(file->descriptor.get(), F_GETFD), FD_CLOEXEC);
}

TEST(NamesTest, AMoveReplacesAndLeavesContentAlone)
{
    const TestDelegate delegate;
    delegate.create("/a", "of a");
    delegate.create("/b", "of b");
    const std::string onDisk = readFile(delegate.onDisk("/a"));
    ASSERT_TRUE(delegate->moveItemAtPath("/a", "/b"));
    EXPECT_EQ(readFile(delegate.onDisk("/b")), onDisk);
    EXPECT_EQ(delegate.contentAt("/b"), "of a");
    EXPECT_EQ(delegate->moveItemAtPath("/a", "/c").code(), ENOENT);
}

TEST(NamesTest, AMoveOfAFolderLeavesTheNamesBelowAlone)
{
    const TestDelegate delegate;
    ASSERT_TRUE(delegate->createDirectoryAtPath("/a", {}));
    delegate.create("/a/file", "content");
    ASSERT_TRUE(delegate->moveItemAtPath("/a", "/b"));
    EXPECT_EQ(delegate.contentAt("/b/file"), "content");
}

TEST(NamesTest, AFolderOfForeignNamesIsEmptyToSeeAndCannotBeRemovedAsAFolder)
{
    const TestDelegate delegate;
    ASSERT_TRUE(delegate->createDirectoryAtPath("/folder", {}));
    writeFile(delegate.onDisk("/folder") + "/stray.txt", "");
    EXPECT_THAT(delegate->contentsOfDirectoryAtPath("/folder").names, IsEmpty());
    EXPECT_EQ(delegate->removeDirectoryAtPath("/folder").code(), ENOTEMPTY);
    ASSERT_TRUE(delegate->removeItemAtPath("/folder"));
    EXPECT_EQ(delegate->attributesOfItemAtPath("/folder").code(), ENOENT);
}

TEST(NamesTest, FoldersAndFilesAreRemoved)
{
    const TestDelegate delegate;
    ASSERT_TRUE(delegate->createDirectoryAtPath("/folder", {}));
    delegate.create("/file");
    EXPECT_EQ(delegate->removeDirectoryAtPath("/file").code(), ENOTDIR);
    EXPECT_TRUE(delegate->removeDirectoryAtPath("/folder"));
    EXPECT_TRUE(delegate->removeItemAtPath("/file"));
    EXPECT_EQ(delegate->removeItemAtPath("/file").code(), ENOENT);
    EXPECT_TRUE(std::filesystem::is_empty(delegate.root()));
}

TEST(NamesTest, DataIsExchangedUnderTheNames)
{
    const TestDelegate delegate;
    delegate.create("/a", "of a");
    delegate.create("/b", "of b, longer");
    ASSERT_TRUE(delegate->exchangeDataOfItemAtPath("/a", "/b"));
    EXPECT_EQ(delegate.contentAt("/a"), "of b, longer");
    EXPECT_EQ(delegate.contentAt("/b"), "of a");
    EXPECT_EQ(delegate->exchangeDataOfItemAtPath("/a", "/missing").code(), ENOENT);
    EXPECT_EQ(delegate.contentAt("/a"), "of b, longer");
}

TEST(NamesTest, ANameTooLongForTheStoreGetsTheStoresError)
{
    const TestDelegate delegate;
    delegate.create("/" + std::string(189, 'n'));
    EXPECT_EQ(delegate->createFileAtPath("/" + std::string(190, 'n'), 0644).code(), ENAMETOOLONG);
    EXPECT_EQ(delegate->createDirectoryAtPath("/" + std::string(5000, 'n'), {}).code(),
              ENAMETOOLONG);
}

} // namespace

} // namespace nimbrel::test
