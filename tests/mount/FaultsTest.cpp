// What goes wrong below a disk: an error for the program at work, never a hang or a crash.
#include "mount/Calls.h"
#include "mount/DaemonFacts.h"
#include "support/MountInfo.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <vector>

namespace nimbrel::test {

namespace {

class FaultsTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_ENCRYPTED_DISK();
        _disk = std::make_unique<MountedFolder>();
    }

    [[nodiscard]] MountedFolder &disk() { return *_disk; }

    // Writes a file and tells where it lies in the encrypted folder.
    [[nodiscard]] std::string writeAndFind(const std::string &name, const std::string &text)
    {
        const std::vector<std::string> before = namesIn(disk().encrypted());
        writeFile(disk() / name, text);
        for (const std::string &stored : namesIn(disk().encrypted()))
            if (std::find(before.begin(), before.end(), stored) == before.end())
                return disk().encrypted() + "/" + stored;
        throw std::runtime_error(name + " isn't in the encrypted folder");
    }

    // Still serves: reads and writes.
    void expectAWorkingDisk()
    {
        EXPECT_TRUE(isAlive(disk().daemon()));
        const std::string text = noise(20'000, 77);
        writeFile(disk() / "still-works", text);
        EXPECT_TRUE(readFile(disk() / "still-works") == text);
    }

private:
    std::unique_ptr<MountedFolder> _disk;
};

void limit(pid_t process, __rlimit_resource what, rlim_t most)
{
    const rlimit limit{most, most};
    must(::prlimit(process, what, &limit, nullptr), "prlimit");
}

TEST_F(FaultsTest, AVanishedEncryptedFolderGivesErrors)
{
    writeFile(disk() / "a", "text");
    std::filesystem::remove_all(disk().encrypted());
    const auto make = [&] { return ::mkdir((disk() / "new").c_str(), 0755); };
    EXPECT_NE(errnoOf(make), 0);
    const auto open = [&] { return ::open((disk() / "b").c_str(), O_CREAT | O_RDWR, 0600); };
    EXPECT_NE(errnoOf(open), 0);
    EXPECT_NE(errnoOf([&] { return ::unlink((disk() / "a").c_str()); }), 0);
    EXPECT_TRUE(isAlive(disk().daemon()));
    EXPECT_TRUE(disk().unmount());
}

TEST_F(FaultsTest, AnOpenFileOutlivesTheEncryptedFolder)
{
    const std::string text = noise(50'000, 1);
    {
        const OpenFile file(disk() / "a", O_CREAT | O_RDWR);
        file.writeAt(text, 0);
        std::filesystem::remove_all(disk().encrypted());
        file.writeAt("new", 100);
        file.sync();
        EXPECT_TRUE(file.readAt(3, 100) == "new");
        EXPECT_TRUE(file.readAt(1000, 40'000) == text.substr(40'000, 1000));
    }
    EXPECT_TRUE(disk().unmount());
}

TEST_F(FaultsTest, AShortenedEncryptedFileGivesItsWholeBlocks)
{
    const std::string text = noise(20'000, 2);
    const std::string stored = writeAndFind("a", text);
    for (const off_t size : {10'000, 8192, 17, 1, 0}) {
        must(::truncate(stored.c_str(), size), "truncate " + stored);
        disk().remount();
        const std::string now = readFile(disk() / "a");
        EXPECT_EQ(now.size(), static_cast<std::size_t>(size));
        const std::size_t whole = now.size() / 4096 * 4096;
        EXPECT_TRUE(now.substr(0, whole) == text.substr(0, whole)) << size;
    }
    expectAWorkingDisk();
}

TEST_F(FaultsTest, AGarbledBlockSpoilsNoOther)
{
    constexpr std::size_t block = 4096;
    const std::string text = noise(5 * block + 100, 3);
    const std::string stored = writeAndFind("a", text);
    for (const std::size_t spoilt : {std::size_t{2}, std::size_t{5}}) {
        std::string bytes = readFile(stored);
        bytes[spoilt * block + 50] = static_cast<char>(bytes[spoilt * block + 50] ^ 1);
        writeFile(stored, bytes);
    }
    disk().remount();
    const std::string now = readFile(disk() / "a");
    ASSERT_EQ(now.size(), text.size());
    for (std::size_t i = 0; i <= 5; ++i) {
        const bool same = now.substr(i * block, block) == text.substr(i * block, block);
        EXPECT_EQ(same, i != 2 && i != 5) << i;
    }
    expectAWorkingDisk();
}

TEST_F(FaultsTest, ForeignFilesAreHidden)
{
    const std::vector<std::string> foreign = {
        "notes.txt", ".DS_Store", "a b", "x", "\xff\xfe", "line\nbreak", std::string(255, '.')};
    writeFile(disk() / "a", "text");
    for (const std::string &name : foreign)
        writeFile(disk().encrypted() + "/" + name, "foreign");
    disk().remount();
    EXPECT_EQ(namesIn(disk().plain()), std::vector<std::string>{"a"});
    for (const std::string &name : foreign)
        EXPECT_FALSE(::access((disk() / name).c_str(), F_OK) == 0) << name;
    expectAWorkingDisk();
}

TEST_F(FaultsTest, AFolderWithAForeignFileIsNotRemoved)
{
    const std::vector<std::string> before = namesIn(disk().encrypted());
    must(::mkdir((disk() / "folder").c_str(), 0755), "mkdir");
    std::string stored;
    for (const std::string &name : namesIn(disk().encrypted()))
        if (std::find(before.begin(), before.end(), name) == before.end())
            stored = disk().encrypted() + "/" + name;
    writeFile(stored + "/notes.txt", "foreign");
    const auto remove = [&] { return ::rmdir((disk() / "folder").c_str()); };
    EXPECT_EQ(errnoOf(remove), ENOTEMPTY);
    EXPECT_EQ(readFile(stored + "/notes.txt"), "foreign");
    std::filesystem::remove(stored + "/notes.txt");
    EXPECT_EQ(errnoOf(remove), 0);
}

// Another program may leave anything where a file was; waiting for a pipe's other end would stop
// the whole disk.
TEST_F(FaultsTest, APipeInAFilesPlaceDoesNotStopTheDisk)
{
    const std::string stored = writeAndFind("a", "text");
    writeFile(disk() / "b", "other");
    ASSERT_TRUE(exists(disk() / "a"));
    std::filesystem::remove(stored);
    must(::mkfifo(stored.c_str(), 0666), "mkfifo");
    RunningProcess reader({"cat", disk() / "a"});
    RunningProcess writer({"sh", "-c", "echo x > \"$0\"", disk() / "a"});
    for (int i = 0; i < 20; ++i) {
        const RunResult other = run({"cat", disk() / "b"}, {.limit = std::chrono::seconds(60)});
        ASSERT_EQ(other.output, "other") << i;
    }
    reader.signal(SIGKILL);
    writer.signal(SIGKILL);
    EXPECT_TRUE(reader.wait(std::chrono::seconds(60)).has_value());
    EXPECT_TRUE(writer.wait(std::chrono::seconds(60)).has_value());
    expectAWorkingDisk();
}

TEST_F(FaultsTest, TooFewDescriptorsGiveAnErrorAndNoMore)
{
    limit(disk().daemon(), RLIMIT_NOFILE, 40);
    std::vector<std::unique_ptr<OpenFile>> files;
    int error = 0;
    while (error == 0 && files.size() < 100) {
        const std::string path = disk() / std::to_string(files.size());
        try {
            files.push_back(std::make_unique<OpenFile>(path, O_CREAT | O_RDWR));
        } catch (const std::runtime_error &) {
            error = errnoOf([&] { return ::open(path.c_str(), O_CREAT | O_RDWR, 0600); });
        }
    }
    EXPECT_TRUE(error == EMFILE || error == ENFILE) << error;
    ASSERT_GT(files.size(), 3U);
    const std::string text = noise(20'000, 4);
    for (const auto &file : files) {
        file->writeAt(text, 0);
        file->sync();
        EXPECT_TRUE(file->all() == text);
    }
    files.clear();
    expectAWorkingDisk();
}

// A session's limit on file sizes is an error for the program, not the disk's death.
TEST_F(FaultsTest, ALimitOfFileSizesIsToldToTheProgram)
{
    limit(disk().daemon(), RLIMIT_FSIZE, 1'000'000);
    const OpenFile file(disk() / "a", O_CREAT | O_RDWR);
    const std::string text = noise(500'000, 5);
    file.writeAt(text, 0);
    EXPECT_EQ(errnoOf([&] { return ::pwrite(file.id(), "more", 4, 2'000'000); }), EFBIG);
    EXPECT_EQ(errnoOf([&] { return ::ftruncate(file.id(), 2'000'000); }), EFBIG);
    EXPECT_TRUE(file.all() == text);
    expectAWorkingDisk();
}

} // namespace

} // namespace nimbrel::test
