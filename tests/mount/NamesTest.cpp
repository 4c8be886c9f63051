#include "mount/Calls.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

class NamesTest : public testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_FUSE(); }

    // Every name can be made, is listed once and holds its content, also after a new mount.
    static void expectUsable(MountedFolder &disk, const std::set<std::string> &names)
    {
        for (const std::string &name : names)
            writeFile(disk / name, "content of " + name);
        for (const bool again : {false, true}) {
            if (again)
                disk.remount();
            const std::vector<std::string> seen = namesIn(disk.plain());
            EXPECT_EQ(seen.size(), names.size());
            EXPECT_TRUE(std::set<std::string>(seen.begin(), seen.end()) == names);
            for (const std::string &name : names)
                EXPECT_EQ(readFile(disk / name), "content of " + name);
        }
        for (const std::string &name : names)
            EXPECT_EQ(::unlink((disk / name).c_str()), 0) << name;
        EXPECT_EQ(namesIn(disk.plain()), std::vector<std::string>{});
    }

    static int errorOfMaking(const std::string &path)
    {
        return errnoOf([&] {
            return UniqueFd(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644)).get();
        });
    }
};

TEST_F(NamesTest, OfEveryLengthWork)
{
    MountedFolder disk;
    std::set<std::string> names;
    for (std::size_t length = 1; length <= longestName(); ++length)
        names.insert(std::string(length, static_cast<char>('a' + length % 26)));
    expectUsable(disk, names);
}

TEST_F(NamesTest, TooLongOnesAreRefusedByEveryCall)
{
    const MountedFolder disk;
    const std::string longest = disk / std::string(longestName(), 'n');
    const std::string path = longest + "n";
    writeFile(disk / "file", "");
    const auto file = disk / "file";
    EXPECT_EQ(errorOfMaking(longest), 0);
    EXPECT_EQ(errorOfMaking(path), ENAMETOOLONG);
    EXPECT_EQ(errnoOf([&] { return ::mkdir(path.c_str(), 0755); }), ENAMETOOLONG);
    EXPECT_EQ(errnoOf([&] { return ::symlink("x", path.c_str()); }), ENAMETOOLONG);
    EXPECT_EQ(errnoOf([&] { return ::link(file.c_str(), path.c_str()); }), ENAMETOOLONG);
    EXPECT_EQ(errnoOf([&] { return ::rename(file.c_str(), path.c_str()); }), ENAMETOOLONG);
    EXPECT_EQ(errnoOf([&] { return ::mkfifo(path.c_str(), 0644); }), ENAMETOOLONG);
    EXPECT_EQ(errnoOf([&] { return ::unlink(path.c_str()); }), ENAMETOOLONG);
    EXPECT_EQ(errnoOf([&] { return ::access(path.c_str(), F_OK); }), ENAMETOOLONG);
    EXPECT_EQ(namesIn(disk.plain()).size(), 2U);
}

TEST_F(NamesTest, TheDiskTellsTheirLimit)
{
    const MountedFolder disk;
    struct statvfs system = {};
    ASSERT_EQ(::statvfs(disk.plain().c_str(), &system), 0);
    EXPECT_EQ(system.f_namemax, longestName());
    EXPECT_EQ(::pathconf(disk.plain().c_str(), _PC_NAME_MAX), static_cast<long>(longestName()));
}

TEST_F(NamesTest, OfAllLanguagesWork)
{
    MountedFolder disk;
    std::set<std::string> names{"März ✓.txt", "файл",     "文件名", "📁 picture",
                                "e\xcc\x81",  "\xc3\xa9", "שלום",   "ｆｕｌｌ"};
    std::string sixty;
    for (std::size_t i = 0; i < longestName() / 3; ++i)
        sixty += "文";
    names.insert(sixty);
    expectUsable(disk, names);
}

TEST_F(NamesTest, OddOnesWork)
{
    MountedFolder disk;
    expectUsable(disk, {" ",
                        "  two spaces  ",
                        "new\nline",
                        "tab\there",
                        "-rf",
                        "--",
                        "*",
                        "?",
                        "a\\b",
                        "\"quoted\"",
                        "'",
                        "$HOME",
                        "`id`",
                        "...",
                        ".hidden",
                        "a:b",
                        "~",
                        "trailing.",
                        "\x01\x7f",
                        "%s%n",
                        "#",
                        "con",
                        "desktop.ini",
                        ".DS_Store",
                        ".fuse_hidden0001",
                        "a,b",
                        "0"});
}

TEST_F(NamesTest, ThatDifferOnlyInCaseAreDifferent)
{
    MountedFolder disk;
    expectUsable(disk, {"readme", "README", "Readme"});
}

TEST_F(NamesTest, OfTheConfigurationFileIsFreeInASubfolder)
{
    for (const bool plainNames : {false, true}) {
        MountedFolder disk({.plainNames = plainNames});
        ASSERT_EQ(::mkdir((disk / "folder").c_str(), 0755), 0);
        writeFile(disk / "folder/.encfs6.xml", "just a file");
        disk.remount();
        EXPECT_EQ(namesIn(disk / "folder"), std::vector<std::string>{".encfs6.xml"});
        EXPECT_EQ(readFile(disk / "folder/.encfs6.xml"), "just a file");
        EXPECT_EQ(::unlink((disk / "folder/.encfs6.xml").c_str()), 0);
        EXPECT_EQ(::rmdir((disk / "folder").c_str()), 0);
        disk.remount(); // the folder's own one is still there
    }
}

TEST_F(NamesTest, ThatAreNotUtf8AreRefused)
{
    NIMBREL_NEED_ENCRYPTED_DISK();
    const MountedFolder disk;
    writeFile(disk / "file", "");
    for (const char *name : {"\xff", "latin-\xe4", "half-\xc3", "\xed\xa0\x80", "\xc0\xaf"}) {
        const std::string path = disk / name;
        EXPECT_EQ(errorOfMaking(path), EILSEQ);
        EXPECT_EQ(errnoOf([&] { return ::mkdir(path.c_str(), 0755); }), EILSEQ);
        EXPECT_EQ(errnoOf([&] { return ::symlink("x", path.c_str()); }), EILSEQ);
        EXPECT_EQ(errnoOf([&] { return ::rename((disk / "file").c_str(), path.c_str()); }), EILSEQ);
    }
    EXPECT_EQ(namesIn(disk.plain()), std::vector<std::string>{"file"});
}

} // namespace
} // namespace nimbrel::test
