#include "config/AtomicFile.h"

#include "config/Child.h"
#include "config/Configurations.h"
#include "support/Files.h"
#include "support/TempFolder.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

struct stat statusOf(const std::string &path)
{
    struct stat status = {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

mode_t permissionsOf(const std::string &path)
{
    return statusOf(path).st_mode & 07777U;
}

// The umask of the process, for as long as this lives.
class Umask final
{
public:
    explicit Umask(mode_t mask) : _old(::umask(mask)) {}
    ~Umask() { ::umask(_old); }
    Umask(const Umask &) = delete;
    Umask &operator=(const Umask &) = delete;

private:
    mode_t _old;
};

TEST(AtomicFileTest, NewFileHoldsTheTextAndGetsTheModeBeforeTheUmask)
{
    const TempFolder folder;
    const Umask mask(027);
    EXPECT_EQ(replaceFile(folder / "a", "text"), std::nullopt);
    EXPECT_EQ(replaceFile(folder / "b", "", 0600), std::nullopt);
    EXPECT_EQ(readFile(folder / "a"), "text");
    EXPECT_EQ(readFile(folder / "b"), "");
    EXPECT_EQ(permissionsOf(folder / "a"), 0640U);
    EXPECT_EQ(permissionsOf(folder / "b"), 0600U);
    EXPECT_EQ(namesIn(folder.path()), (std::vector<std::string>{"a", "b"}));
}

TEST(AtomicFileTest, NewFileIsWrittenUnderAUmaskThatTakesAll)
{
    const TempFolder folder;
    const Umask mask(0777);
    EXPECT_EQ(replaceFile(folder / "a", "text"), std::nullopt);
    EXPECT_EQ(permissionsOf(folder / "a"), 0U);
}

TEST(AtomicFileTest, ReplacedFileKeepsItsPermissionBits)
{
    const TempFolder folder;
    const Umask mask(077);
    for (const mode_t mode : {0600U, 0664U, 0444U}) {
        writeFile(folder / "a", "old");
        ASSERT_EQ(::chmod((folder / "a").c_str(), mode), 0);
        EXPECT_EQ(replaceFile(folder / "a", "new"), std::nullopt);
        EXPECT_EQ(readFile(folder / "a"), "new");
        EXPECT_EQ(permissionsOf(folder / "a"), mode);
        std::filesystem::remove(folder / "a");
    }
}

TEST(AtomicFileTest, ReplacedFileIsAnotherFile)
{
    const TempFolder folder;
    writeFile(folder / "a", "old");
    std::filesystem::create_hard_link(folder / "a", folder / "b");
    EXPECT_EQ(replaceFile(folder / "a", "new"), std::nullopt);
    EXPECT_EQ(readFile(folder / "b"), "old");
}

TEST(AtomicFileTest, OwnerKeepsTheFileWhenRootWrites)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root writes for others";
    const TempFolder folder;
    writeFile(folder / "a", "old");
    if (::chown((folder / "a").c_str(), 65534, 65534) != 0)
        GTEST_SKIP() << "this root can't give files away";
    EXPECT_EQ(replaceFile(folder / "a", "new"), std::nullopt);
    EXPECT_EQ(statusOf(folder / "a").st_uid, 65534U);
    EXPECT_EQ(statusOf(folder / "a").st_gid, 65534U);
}

TEST(AtomicFileTest, FileOfAnotherOwnerIsReplacedByWhoMayWriteTheFolder)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root makes files of others";
    const TempFolder folder;
    writeFile(folder / "a", "old");
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    Child child([&] {
        if (!becomeOrdinaryUser())
            return 2;
        return ::access(folder.path().c_str(), W_OK) != 0 || !replaceFile(folder / "a", "new") ? 0
                                                                                               : 1;
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST(AtomicFileTest, LinkIsFollowedAndItsTargetReplaced)
{
    const TempFolder folder;
    const std::string inner = folder.makeFolder("inner");
    writeFile(inner + "/target", "old");
    std::filesystem::create_symlink("inner/target", folder / "relative");
    std::filesystem::create_symlink(folder / "relative", folder / "absolute");
    EXPECT_EQ(replaceFile(folder / "absolute", "new"), std::nullopt);
    EXPECT_EQ(readFile(inner + "/target"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "absolute"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "relative"));
    EXPECT_EQ(namesIn(inner), std::vector<std::string>{"target"});
}

TEST(AtomicFileTest, LinkToNothingGetsItsTargetMade)
{
    const TempFolder folder;
    std::filesystem::create_symlink("target", folder / "link");
    EXPECT_EQ(replaceFile(folder / "link", "new"), std::nullopt);
    EXPECT_EQ(readFile(folder / "target"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
}

TEST(AtomicFileTest, CircleOfLinksIsAnError)
{
    const TempFolder folder;
    std::filesystem::create_symlink("b", folder / "a");
    std::filesystem::create_symlink("a", folder / "b");
    const auto error = replaceFile(folder / "a", "new");
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->code, ELOOP);
}

TEST(AtomicFileTest, WhatIsNoFileStays)
{
    const TempFolder folder;
    static_cast<void>(folder.makeFolder("folder"));
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    const auto folderError = replaceFile(folder / "folder", "new");
    ASSERT_TRUE(folderError.has_value());
    EXPECT_EQ(folderError->message,
              "Could not write \"" + folder / "folder" + "\": Is a directory.");
    const auto pipeError = replaceFile(folder / "pipe", "new");
    ASSERT_TRUE(pipeError.has_value());
    EXPECT_EQ(pipeError->code, EINVAL);
    EXPECT_EQ(namesIn(folder.path()), (std::vector<std::string>{"folder", "pipe"}));
}

TEST(AtomicFileTest, MissingFolderIsNamed)
{
    const TempFolder folder;
    const auto error = replaceFile(folder / "none/a", "new");
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->code, ENOENT);
    EXPECT_EQ(error->message,
              "Could not write \"" + folder / "none/a" + "\": No such file or directory.");
}

TEST(AtomicFileTest, FileInPlaceOfAFolderIsAnError)
{
    const TempFolder folder;
    writeFile(folder / "file", "");
    const auto error = replaceFile(folder / "file/a", "new");
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->code, ENOTDIR);
}

TEST(AtomicFileTest, BareNamesLieInTheWorkingFolder)
{
    const TempFolder folder;
    Child child([&] {
        if (::chdir(folder.path().c_str()) != 0)
            return 2;
        return replaceFile("a", "new") ? 1 : 0;
    });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(readFile(folder / "a"), "new");
}

TEST(AtomicFileTest, ReadOnlyFolderNamesTheCause)
{
    const TempFolder folder;
    writeFile(folder / "a", "old");
    ASSERT_EQ(::chmod(folder.path().c_str(), 0555), 0);
    const std::string expected = "Could not write \"" + folder / "a" + "\": Permission denied.";
    Child child([&] {
        if (!becomeOrdinaryUser())
            return 2;
        const auto error = replaceFile(folder / "a", "new");
        return error && error->code == EACCES && error->message == expected ? 0 : 1;
    });
    EXPECT_EQ(child.wait(), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    EXPECT_EQ(readFile(folder / "a"), "old");
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"a"});
}

TEST(AtomicFileTest, FolderThatMayNotBeListedIsWrittenIn)
{
    const TempFolder folder;
    writeFile(folder / "a", "old");
    if (::geteuid() == 0 && ::chown(folder.path().c_str(), 65534, 65534) != 0)
        GTEST_SKIP() << "this root can't give folders away";
    ASSERT_EQ(::chmod(folder.path().c_str(), 0300), 0);
    Child child([&] {
        if (!becomeOrdinaryUser())
            return 2;
        if (::access(folder.path().c_str(), W_OK) != 0)
            return 3;
        return replaceFile(folder / "a", "new") ? 1 : 0;
    });
    const int status = child.wait();
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    if (status == 3)
        GTEST_SKIP() << "the machine's temporary folder is closed to others";
    EXPECT_EQ(status, 0);
    EXPECT_EQ(readFile(folder / "a"), "new");
}

TEST(AtomicFileTest, FullDiskLeavesTheOldFileWholeAndNoTemporaryFile)
{
    const TempFolder folder;
    writeFile(folder / "a", "old");
    Child child([&] {
        const rlimit limit = {1000, 1000};
        ::signal(SIGXFSZ, SIG_IGN);
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 2;
        const auto error = replaceFile(folder / "a", std::string(5000, 'n'));
        return error && error->code == EFBIG ? 0 : 1;
    });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(readFile(folder / "a"), "old");
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"a"});
}

} // namespace

} // namespace nimbrel::test
