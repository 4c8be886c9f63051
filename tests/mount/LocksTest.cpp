#include "mount/Calls.h"
#include "mount/Child.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "support/Files.h"

#include <array>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

class LocksTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        _disk = std::make_unique<MountedFolder>();
        _path = *_disk / "file";
        writeFile(_path, "0");
    }

    static struct flock recordLock(short type, off_t start, off_t length)
    {
        struct flock lock = {};
        lock.l_type = type;
        lock.l_whence = SEEK_SET;
        lock.l_start = start;
        lock.l_len = length;
        return lock;
    }

    // Another process's errno for that record lock, without waiting.
    [[nodiscard]] int errorElsewhere(short type, off_t start, off_t length) const
    {
        Child other([&] {
            const OpenFile file(_path, O_RDWR);
            struct flock lock = recordLock(type, start, length);
            return errnoOf([&] { return ::fcntl(file.id(), F_SETLK, &lock); });
        });
        return other.wait();
    }

    // Adds one a hundred times to the number in the file, each time under a lock.
    [[nodiscard]] int countUp(const std::function<void(int, bool)> &lock) const
    {
        const OpenFile file(_path, O_RDWR);
        for (int i = 0; i < 100; ++i) {
            lock(file.id(), true);
            file.writeAt(std::to_string(std::stoi(file.readAt(20, 0)) + 1), 0);
            lock(file.id(), false);
        }
        return 0;
    }

    void expectCountOfTwo(const std::function<void(int, bool)> &lock) const
    {
        Child one([&] { return countUp(lock); });
        Child two([&] { return countUp(lock); });
        EXPECT_EQ(one.wait(), 0);
        EXPECT_EQ(two.wait(), 0);
        EXPECT_EQ(readFile(_path), "200");
    }

    std::unique_ptr<MountedFolder> _disk;
    std::string _path;
};

TEST_F(LocksTest, WholeFileOnesKeepOthersOut)
{
    const auto elsewhere = [&](int kind) {
        Child other([&, kind] {
            const OpenFile file(_path);
            return errnoOf([&] { return ::flock(file.id(), kind | LOCK_NB); });
        });
        return other.wait();
    };
    const OpenFile file(_path, O_RDWR);
    ASSERT_EQ(::flock(file.id(), LOCK_EX), 0);
    EXPECT_EQ(elsewhere(LOCK_SH), EWOULDBLOCK);
    ASSERT_EQ(::flock(file.id(), LOCK_SH), 0);
    EXPECT_EQ(elsewhere(LOCK_SH), 0);
    EXPECT_EQ(elsewhere(LOCK_EX), EWOULDBLOCK);
    ASSERT_EQ(::flock(file.id(), LOCK_UN), 0);
    EXPECT_EQ(elsewhere(LOCK_EX), 0);
}

TEST_F(LocksTest, WholeFileOnesMakeProcessesWait)
{
    expectCountOfTwo(
        [](int file, bool on) { must(::flock(file, on ? LOCK_EX : LOCK_UN), "flock"); });
}

TEST_F(LocksTest, RecordOnesKeepOthersOutOfTheirRangeOnly)
{
    const OpenFile file(_path, O_RDWR);
    struct flock lock = recordLock(F_WRLCK, 100, 50);
    ASSERT_EQ(::fcntl(file.id(), F_SETLK, &lock), 0);
    EXPECT_EQ(errorElsewhere(F_WRLCK, 149, 1), EAGAIN);
    EXPECT_EQ(errorElsewhere(F_RDLCK, 90, 11), EAGAIN);
    EXPECT_EQ(errorElsewhere(F_WRLCK, 150, 0), 0);
    EXPECT_EQ(errorElsewhere(F_WRLCK, 0, 100), 0);
    lock = recordLock(F_UNLCK, 100, 50);
    ASSERT_EQ(::fcntl(file.id(), F_SETLK, &lock), 0);
    EXPECT_EQ(errorElsewhere(F_WRLCK, 149, 1), 0);
}

TEST_F(LocksTest, RecordOnesTellTheirHolder)
{
    const OpenFile file(_path, O_RDWR);
    struct flock lock = recordLock(F_WRLCK, 10, 5);
    ASSERT_EQ(::fcntl(file.id(), F_SETLK, &lock), 0);
    const pid_t holder = ::getpid();
    Child other([&] {
        const OpenFile same(_path, O_RDWR);
        struct flock asked = recordLock(F_RDLCK, 0, 0);
        must(::fcntl(same.id(), F_GETLK, &asked), "F_GETLK");
        return asked.l_type == F_WRLCK && asked.l_start == 10 && asked.l_pid == holder ? 0 : 1;
    });
    EXPECT_EQ(other.wait(), 0);
}

TEST_F(LocksTest, RecordOnesMakeProcessesWait)
{
    expectCountOfTwo([](int file, bool on) {
        struct flock lock = recordLock(on ? F_WRLCK : F_UNLCK, 0, 0);
        must(::fcntl(file, F_SETLKW, &lock), "F_SETLKW");
    });
}

TEST_F(LocksTest, GoWithTheProcessThatHeldThem)
{
    Child holder([&] {
        const OpenFile file(_path, O_RDWR);
        struct flock lock = recordLock(F_WRLCK, 0, 0);
        must(::fcntl(file.id(), F_SETLK, &lock), "F_SETLK");
        must(::flock(file.id(), LOCK_EX), "flock");
        return 0;
    });
    ASSERT_EQ(holder.wait(), 0);
    EXPECT_EQ(errorElsewhere(F_WRLCK, 0, 0), 0);
    const OpenFile file(_path);
    EXPECT_EQ(::flock(file.id(), LOCK_EX | LOCK_NB), 0);
}

TEST_F(LocksTest, OnlyOneOfManyProcessesMakesAFile)
{
    for (int round = 0; round < 20; ++round) {
        const std::string path = *_disk / ("lock" + std::to_string(round));
        const auto make = [&] {
            return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644) >= 0
                       ? 1
                       : (errno == EEXIST ? 0 : 2);
        };
        Child one(make);
        Child two(make);
        Child three(make);
        EXPECT_EQ(one.wait() + two.wait() + three.wait(), 1);
    }
}

} // namespace
} // namespace nimbrel::test
