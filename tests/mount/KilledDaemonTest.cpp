// The program that serves the disk is killed at its work: what was confirmed is there.
#include "mount/Calls.h"
#include "mount/DaemonFacts.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "support/Files.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace nimbrel::test {

namespace {

class KilledDaemonTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_ENCRYPTED_DISK();
        _disk = std::make_unique<MountedFolder>();
    }

    // Runs step after step on a thread of its own until one fails, kills the disk in the middle
    // of it, once `enough` steps are done, and mounts it again. How many were done.
    int killAmid(const std::function<void(int)> &step, int enough)
    {
        std::atomic<int> done = 0;
        std::thread worker([&] {
            try {
                for (;; ++done)
                    step(done);
            } catch (const std::runtime_error &) {
                // the death of the disk
            }
        });
        const bool reached = eventually([&] { return done >= enough; }, std::chrono::minutes(2));
        _disk->kill();
        worker.join();
        EXPECT_TRUE(reached) << "only " << done << " steps";
        _disk->mount();
        EXPECT_TRUE(comesUp(*_disk));
        return done;
    }

    [[nodiscard]] MountedFolder &disk() { return *_disk; }

private:
    std::unique_ptr<MountedFolder> _disk;
};

constexpr std::size_t block = 4096;

std::string contentOf(int number)
{
    return noise(10'000 + 333 * static_cast<std::size_t>(number),
                 static_cast<std::uint64_t>(number));
}

// What block `index` of a file holds after its `generation`-th writing.
std::string blockOf(int generation, std::size_t index)
{
    return noise(block, 1000 * static_cast<std::uint64_t>(generation) + index);
}

std::string fileOf(int generation, std::size_t blocks)
{
    std::string text;
    for (std::size_t index = 0; index < blocks; ++index)
        text += blockOf(generation, index);
    return text;
}

// The worker holds the disk's root, and never goes back to a path: after the disk's death that
// would lead into the bare folder below it.
class Root
{
public:
    explicit Root(const MountedFolder &disk) : _root(disk.plain(), O_RDONLY | O_DIRECTORY) {}

    void writeAndConfirm(const std::string &name, std::string_view text) const
    {
        const UniqueFd file(
            must(::openat(_root.id(), name.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600), name));
        for (std::size_t done = 0; done < text.size();) {
            const std::string_view rest = text.substr(done);
            done += static_cast<std::size_t>(
                must(::write(file.get(), rest.data(), rest.size()), "write"));
        }
        must(::fsync(file.get()), "fsync");
    }

private:
    OpenFile _root;
};

TEST_F(KilledDaemonTest, ConfirmedFilesAreWhole)
{
    const Root root(disk());
    const auto step = [&](int i) {
        root.writeAndConfirm("file" + std::to_string(i), contentOf(i));
    };
    const int confirmed = killAmid(step, 25);
    for (int i = 0; i < confirmed; ++i)
        EXPECT_TRUE(readFile(disk() / ("file" + std::to_string(i))) == contentOf(i)) << i;
}

TEST_F(KilledDaemonTest, AnInterruptedOverwriteLeavesOldOrNewBlocks)
{
    constexpr std::size_t blocks = 64;
    constexpr std::size_t piece = 16; // blocks in one write
    writeFile(disk() / "a", fileOf(0, blocks));
    const OpenFile file(disk() / "a", O_RDWR);
    const auto step = [&](int done) {
        const std::string text = fileOf(done + 1, blocks);
        for (std::size_t index = 0; index < blocks; index += piece)
            file.writeAt(std::string_view(text).substr(index * block, piece * block),
                         static_cast<off_t>(index * block));
        file.sync();
    };
    const int confirmed = killAmid(step, 15);
    const std::string now = readFile(disk() / "a");
    ASSERT_EQ(now.size(), blocks * block);
    for (std::size_t index = 0; index < blocks; ++index) {
        const std::string seen = now.substr(index * block, block);
        EXPECT_TRUE(seen == blockOf(confirmed, index) || seen == blockOf(confirmed + 1, index))
            << index << " after " << confirmed;
    }
}

TEST_F(KilledDaemonTest, ConfirmedAppendsAreThereInOrder)
{
    constexpr std::size_t size = 700; // each re-encodes the last block
    const OpenFile file(disk() / "log", O_CREAT | O_WRONLY | O_APPEND);
    const auto step = [&](int i) {
        file.write(noise(size, static_cast<std::uint64_t>(i)));
        file.sync();
    };
    const int confirmed = killAmid(step, 40);
    std::string expected;
    for (int i = 0; i <= confirmed; ++i)
        expected += noise(size, static_cast<std::uint64_t>(i));
    const std::string now = readFile(disk() / "log");
    EXPECT_GE(now.size(), static_cast<std::size_t>(confirmed) * size);
    EXPECT_TRUE(expected.starts_with(now));
}

TEST_F(KilledDaemonTest, ASafeSaveLeavesTheOldOrTheNewText)
{
    const OpenFile root(disk().plain(), O_RDONLY | O_DIRECTORY);
    const Root writer(disk());
    writer.writeAndConfirm("text", contentOf(0));
    const auto step = [&](int done) {
        writer.writeAndConfirm("text.new" + std::to_string(done), contentOf(done + 1));
        const std::string name = "text.new" + std::to_string(done);
        must(::renameat(root.id(), name.c_str(), root.id(), "text"), "renameat");
        root.sync();
    };
    const int confirmed = killAmid(step, 20);
    const std::string now = readFile(disk() / "text");
    EXPECT_TRUE(now == contentOf(confirmed) || now == contentOf(confirmed + 1));
}

TEST_F(KilledDaemonTest, ProgramsAtWorkGetAnErrorAndDoNotHang)
{
    const OpenFile file(disk() / "a", O_CREAT | O_RDWR);
    file.writeAt("text", 0);
    disk().kill();
    EXPECT_NE(errnoOf([&] { return ::pwrite(file.id(), "new", 3, 0); }), 0);
    EXPECT_NE(errnoOf([&] { return ::fsync(file.id()); }), 0);
}

} // namespace

} // namespace nimbrel::test
