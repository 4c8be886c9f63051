#include "crypto/StoredName.h"
#include "fs/guards/GuardedFolder.h"
#include "support/Files.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

std::vector<std::string> namesIn(GuardedFolder &folder, const std::string &path = "/")
{
    std::vector<std::string> names;
    const NBErrnoOr<std::vector<NBDirectoryEntry>> entries = folder.list(path);
    EXPECT_EQ(entries.code(), 0);
    if (entries)
        for (const NBDirectoryEntry &entry : *entries)
            names.push_back(entry.name);
    std::sort(names.begin(), names.end());
    return names;
}

// A stored name that decodes to `name`, put on disk as another program would.
void storeAs(GuardedFolder &folder, std::string_view name)
{
    const std::optional<std::string> stored = folder.delegate().cryptor().encodeString(name);
    ASSERT_TRUE(stored);
    writeFile(folder.store() + "/" + *stored, "");
}

// The stored name with a bit set that no name byte fills.
std::string nonCanonical(GuardedFolder &folder, const std::string &name)
{
    constexpr std::string_view alphabet =
        ",-0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    std::string stored = *folder.delegate().cryptor().encodeString(name);
    stored.back() = alphabet.at(alphabet.find(stored.back()) | 32U);
    return stored;
}

} // namespace

TEST(GuardedListingTest, HasEveryItemWithItsNumberAndType)
{
    GuardedFolder folder;
    (void)folder.create("/file");
    ASSERT_TRUE(folder.tree().makeFolder("/folder", 0755, thisUser()));
    ASSERT_TRUE(folder.tree().makeLink("/link", "file", thisUser()));
    ASSERT_TRUE(folder.tree().makeNode("/pipe", S_IFIFO | 0600, 0, thisUser()));
    const NBErrnoOr<std::vector<NBDirectoryEntry>> entries = folder.list("/");
    ASSERT_TRUE(entries);
    EXPECT_EQ(entries->size(), 4U);
    for (const NBDirectoryEntry &entry : *entries) {
        const NBErrnoOr<struct stat> item = folder.tree().attributes("/" + entry.name);
        ASSERT_TRUE(item) << entry.name;
        EXPECT_EQ(entry.inode, item->st_ino);
        if (entry.type != DT_UNKNOWN) {
            EXPECT_EQ(static_cast<mode_t>(DTTOIF(entry.type)), item->st_mode & S_IFMT);
        }
    }
}

TEST(GuardedListingTest, TellsWhyAFolderCannotBeListed)
{
    GuardedFolder folder;
    (void)folder.create("/file");
    EXPECT_EQ(folder.list("/file").code(), ENOTDIR);
    EXPECT_EQ(folder.list("/none").code(), ENOENT);
    EXPECT_TRUE(namesIn(folder).size() == 1);
}

TEST(GuardedListingTest, NamesThatCannotBeAreLeftOut)
{
    GuardedFolder folder;
    using namespace std::string_literals;
    for (const std::string &name : {"a/b"s, "nul\0inside"s, ""s, "."s, ".."s, "good"s})
        storeAs(folder, name);
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"good"});
}

TEST(GuardedListingTest, AnotherSpellingOfAStoredNameIsLeftOut)
{
    GuardedFolder folder;
    // Three bytes of name leave two bits of the last character over.
    const std::string stored = nonCanonical(folder, "abc");
    writeFile(folder.store() + "/" + stored, "");
    // The delegate lists what can't be opened.
    EXPECT_EQ(folder.delegate().contentsOfDirectoryAtPath("/").names,
              std::vector<std::string>{"abc"});
    EXPECT_EQ(folder.delegate().openFileAtPath("/abc", O_RDONLY).code(), ENOENT);
    EXPECT_EQ(namesIn(folder), std::vector<std::string>());
    (void)folder.create("/abc");
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"abc"});
}

// Why a canonical stored name that decodes is not encoded again for each listing.
TEST(GuardedListingTest, CanonicalStoredNamesHaveOnePlainName)
{
    GuardedFolder folder;
    const NBCryptor &cryptor = folder.delegate().cryptor();
    const std::uint64_t seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937_64 random(seed);
    constexpr std::string_view alphabet =
        ",-0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    int decoded = 0;
    for (int i = 0; i < 400'000; ++i) {
        std::string stored(3 + random() % 3, ',');
        for (char &character : stored)
            character = alphabet.at(random() % alphabet.size());
        if (!isCanonicalStoredName(stored))
            continue;
        const std::optional<std::string> name = cryptor.decodeString(stored);
        if (!name)
            continue;
        ++decoded;
        EXPECT_EQ(cryptor.encodeString(*name), stored);
    }
    RecordProperty("decoded", decoded);
}

TEST(GuardedListingTest, StrangersAreHiddenWithEncryptedNames)
{
    GuardedFolder folder;
    writeFile(folder.store() + "/.encfs6.xml", "");
    writeFile(folder.store() + "/!IMPORTANT Nimbrel Information.txt", "");
    writeFile(folder.store() + "/ab", "");
    EXPECT_EQ(namesIn(folder), std::vector<std::string>());
}

TEST(GuardedListingTest, PlainNamesHideTheConfigurationInTheRootOnly)
{
    GuardedFolder folder{{.plainNames = true}};
    writeFile(folder.store() + "/.encfs6.xml", "");
    writeFile(folder.store() + "/Keyfile.nmx", "");
    ASSERT_TRUE(folder.tree().makeFolder("/below", 0755, thisUser()));
    (void)folder.create("/below/.encfs6.xml");
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"below"});
    EXPECT_EQ(namesIn(folder, "/below"), std::vector<std::string>{".encfs6.xml"});
}

TEST(GuardedListingTest, ManyEntriesAreListedOnce)
{
    GuardedFolder folder;
    std::vector<std::string> wanted;
    for (int i = 0; i < 500; ++i) {
        wanted.push_back("file " + std::to_string(i));
        ASSERT_TRUE(folder.tree().makeNode("/" + wanted.back(), S_IFREG | 0600, 0, thisUser()));
    }
    std::sort(wanted.begin(), wanted.end());
    EXPECT_EQ(namesIn(folder), wanted);
}

TEST(GuardedListingTest, ARootGivenByALinkIsAFolder)
{
    const TempFolder temp;
    (void)temp.makeFolder("real");
    ASSERT_EQ(::symlink("real", (temp / "link").c_str()), 0);
    GuardedFolder folder{{.store = temp / "link"}};
    EXPECT_TRUE(S_ISDIR(folder.tree().attributes("/")->st_mode));
    (void)folder.create("/file");
    EXPECT_EQ(namesIn(folder).size(), 1U);
    EXPECT_TRUE(folder.tree().syncFolder("/"));
}

} // namespace nimbrel::test
