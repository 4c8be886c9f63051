// Whole encrypted folders, read and written through the delegate.
#include "config/NBNimbrelFSPreferences.h"
#include "fs/TestDelegate.h"
#include "support/Files.h"
#include "support/Process.h"

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>

namespace nimbrel::test {

namespace {

constexpr std::string_view passphrase = "nimbrel vectors";

// What a tree holds: folders as "folder", links as "link:" and files as "file:" with what is in
// them, by their paths.
using Tree = std::map<std::string, std::string>;

void extract(const std::string &archive, const std::string &folder)
{
    const RunResult result =
        run({"tar", "-xf", archive, "-C", folder, "--no-same-owner", "--no-same-permissions"});
    ASSERT_EQ(result.status, 0) << result.error;
}

Tree treeBelow(const std::string &folder)
{
    Tree tree;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
        std::string &what = tree["/" + entry.path().lexically_relative(folder).string()];
        if (entry.is_symlink())
            what = "link:" + std::filesystem::read_symlink(entry.path()).string();
        else
            what = entry.is_directory() ? "folder" : "file:" + readFile(entry.path());
    }
    return tree;
}

std::string contentThrough(NBNimbrelFS &delegate, const std::string &path)
{
    NBErrnoOr<NBFileHandle> file = delegate.openFileAtPath(path, O_RDONLY);
    EXPECT_EQ(file.code(), 0) << path;
    std::string text(100000, '\0');
    const NBErrnoOr<std::size_t> got = delegate.readFileAtPath(path, *file, spanOf(text), 0);
    EXPECT_EQ(got.code(), 0) << path;
    delegate.releaseFileAtPath(path, *file);
    text.resize(got ? *got : 0);
    return text;
}

void addTree(NBNimbrelFS &delegate, const std::string &folder, Tree &tree)
{
    const NBDirectoryListing listing = delegate.contentsOfDirectoryAtPath(folder);
    EXPECT_EQ(listing.error, 0);
    for (const std::string &name : listing.names) {
        const std::string path = folder + (folder == "/" ? "" : "/") + name;
        const NBErrnoOr<struct stat> status = delegate.attributesOfItemAtPath(path);
        ASSERT_EQ(status.code(), 0) << path;
        if (S_ISLNK(status->st_mode)) {
            tree[path] = "link:" + *delegate.destinationOfSymbolicLinkAtPath(path);
        } else if (S_ISDIR(status->st_mode)) {
            tree[path] = "folder";
            addTree(delegate, path, tree);
        } else {
            tree[path] = "file:" + contentThrough(delegate, path);
        }
    }
}

Tree treeThrough(NBNimbrelFS &delegate)
{
    Tree tree;
    addTree(delegate, "/", tree);
    return tree;
}

void putTree(NBNimbrelFS &delegate, const Tree &tree)
{
    for (const auto &[path, what] : tree) { // a folder stands before what it holds
        const std::string content = what.substr(what.find(':') + 1);
        if (what == "folder") {
            ASSERT_TRUE(delegate.createDirectoryAtPath(path, {})) << path;
        } else if (what.starts_with("link:")) {
            ASSERT_TRUE(delegate.createSymbolicLinkAtPath(path, content)) << path;
        } else {
            NBErrnoOr<NBFileHandle> file = delegate.createFileAtPath(path, 0644);
            ASSERT_TRUE(file) << path;
            ASSERT_TRUE(delegate.writeFileAtPath(path, *file, bytesOf(content), 0)) << path;
        }
    }
}

class SampleFoldersTest : public testing::Test
{
protected:
    void SetUp() override
    {
        extract(dataFile("plain.tar"), plain);
        extract(dataFile("folders.tar.xz"), folders);
        for (const auto &entry : std::filesystem::directory_iterator(folders))
            samples.push_back(entry.path());
        ASSERT_GE(samples.size(), 4U);
    }
    static std::unique_ptr<NBNimbrelFS> open(const std::string &folder,
                                             const std::string &configuration)
    {
        NBPreferencesError error;
        const auto preferences = NBNimbrelFSPreferences().preferencesWithURL(configuration, &error);
        EXPECT_TRUE(preferences) << error.message;
        if (!preferences)
            return nullptr;
        return NBNimbrelFS::withRootPath(folder, *preferences, passphrase);
    }

    FixedUmask mask;
    TempFolder temp;
    std::string plain = temp.makeFolder("plain");
    std::string folders = temp.makeFolder("folders");
    std::vector<std::string> samples;
};

TEST_F(SampleFoldersTest, EachHoldsThePlainTree)
{
    const Tree expected = treeBelow(plain);
    ASSERT_GT(expected.size(), 10U);
    for (const std::string &sample : samples) {
        const auto delegate = open(sample, sample + "/.encfs6.xml");
        ASSERT_NE(delegate, nullptr) << sample;
        EXPECT_EQ(treeThrough(*delegate), expected) << sample;
    }
}

TEST_F(SampleFoldersTest, TheTreeWrittenAnewIsTheSampleToTheByte)
{
    const Tree expected = treeBelow(plain);
    for (const std::string &sample : samples) {
        const std::string store =
            temp.makeFolder("store of " + std::filesystem::path(sample).filename().string());
        const auto delegate = open(store, sample + "/.encfs6.xml");
        ASSERT_NE(delegate, nullptr);
        putTree(*delegate, expected);
        Tree onDisk = treeBelow(sample);
        onDisk.erase("/.encfs6.xml");
        EXPECT_EQ(treeBelow(store), onDisk) << sample;
    }
}

TEST_F(SampleFoldersTest, NoneOpensWithAnotherPassphrase)
{
    for (const std::string &sample : samples) {
        NBPreferencesError error;
        const auto preferences =
            NBNimbrelFSPreferences().preferencesWithURL(sample + "/.encfs6.xml", &error);
        ASSERT_TRUE(preferences) << error.message;
        EXPECT_EQ(NBNimbrelFS::withRootPath(sample, *preferences, "nimbrel vector"), nullptr);
    }
}

// One derivation less at each mount, and nothing that could be told apart.
TEST_F(SampleFoldersTest, AnOpenedFolderHoldsItsFilesBlobAndSalt)
{
    for (const std::string &sample : samples) {
        const auto delegate = open(sample, sample + "/.encfs6.xml");
        ASSERT_NE(delegate, nullptr);
        const std::string file = readFile(sample + "/.encfs6.xml");
        EXPECT_NE(file.find(delegate->settings().encodedKey), std::string::npos);
        EXPECT_NE(file.find(delegate->settings().salt), std::string::npos);
        EXPECT_EQ(delegate->settings().encodedKey,
                  delegate->cryptor().writeKeyWithPassphrase(passphrase));
    }
}

} // namespace

} // namespace nimbrel::test
