// Pipes, sockets and device nodes on the disk.
#include "mount/Calls.h"
#include "mount/Child.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "mount/Tree.h"
#include "support/Files.h"

#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/sysmacros.h>
#include <sys/un.h>

namespace nimbrel::test {

namespace {

class DiskAmongDisksSpecialFilesTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        _disk = std::make_unique<MountedFolder>();
    }

    [[nodiscard]] MountedFolder &disk() { return *_disk; }
    [[nodiscard]] std::string path(const std::string &name) const { return *_disk / name; }

private:
    std::unique_ptr<MountedFolder> _disk;
};

// A path may be longer than a socket's address can hold: names are told from inside the folder.
sockaddr_un addressOf(const std::string &folder, const char *name)
{
    must(::chdir(folder.c_str()), "chdir " + folder);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, name, sizeof address.sun_path - 1);
    return address;
}

int bindTo(int file, const sockaddr_un &address)
{
    return ::bind(file, reinterpret_cast<const sockaddr *>(&address), sizeof address); // NOLINT
}

int connectTo(int file, const sockaddr_un &address)
{
    return ::connect(file, reinterpret_cast<const sockaddr *>(&address), sizeof address); // NOLINT
}

TEST_F(DiskAmongDisksSpecialFilesTest, APipeCarriesDataBetweenPrograms)
{
    must(::mkfifo(path("pipe").c_str(), 0600), "mkfifo");
    const std::string text = noise(200'000, 1);
    Child writer([&] {
        OpenFile(path("pipe"), O_WRONLY).write(text);
        return 0;
    });
    const OpenFile pipe(path("pipe"));
    std::string read;
    std::string piece(65'536, '\0');
    for (;;) {
        const ssize_t got = must(::read(pipe.id(), piece.data(), piece.size()), "read");
        if (got == 0)
            break;
        read.append(piece.data(), static_cast<std::size_t>(got));
    }
    EXPECT_EQ(writer.wait(), 0);
    EXPECT_TRUE(read == text);
    EXPECT_EQ(statusOf(path("pipe")).st_size, 0);
}

TEST_F(DiskAmongDisksSpecialFilesTest, ASocketIsBoundAndReached)
{
    Child server([&] { // a working folder of its own
        const sockaddr_un address = addressOf(disk().plain(), "socket");
        const UniqueFd listener(must(::socket(AF_UNIX, SOCK_STREAM, 0), "socket"));
        must(bindTo(listener.get(), address), "bind");
        must(::listen(listener.get(), 1), "listen");
        const UniqueFd caller(must(::socket(AF_UNIX, SOCK_STREAM, 0), "socket"));
        must(connectTo(caller.get(), address), "connect");
        const UniqueFd accepted(must(::accept(listener.get(), nullptr, nullptr), "accept"));
        must(::write(caller.get(), "hello", 5), "write");
        char text[5] = {};
        must(::read(accepted.get(), text, sizeof text), "read");
        return std::memcmp(text, "hello", sizeof text) == 0 ? 0 : 1;
    });
    EXPECT_EQ(server.wait(), 0);
    EXPECT_TRUE(S_ISSOCK(statusOf(path("socket")).st_mode));
    Child late([&] { // nobody listens any more
        const sockaddr_un address = addressOf(disk().plain(), "socket");
        const UniqueFd caller(must(::socket(AF_UNIX, SOCK_STREAM, 0), "socket"));
        return errnoOf([&] { return connectTo(caller.get(), address); }) == ECONNREFUSED ? 0 : 1;
    });
    EXPECT_EQ(late.wait(), 0);
    EXPECT_EQ(errnoOf([&] { return ::unlink(path("socket").c_str()); }), 0);
}

TEST_F(DiskAmongDisksSpecialFilesTest, TheyStayOverAMount)
{
    must(::mkfifo(path("pipe").c_str(), 0600), "mkfifo");
    must(::mknod(path("socket").c_str(), S_IFSOCK | 0600, 0), "mknod");
    must(::mknod(path("file").c_str(), S_IFREG | 0600, 0), "mknod");
    disk().remount();
    EXPECT_TRUE(S_ISFIFO(statusOf(path("pipe")).st_mode));
    EXPECT_TRUE(S_ISSOCK(statusOf(path("socket")).st_mode));
    writeFile(path("file"), "text");
    EXPECT_EQ(readFile(path("file")), "text");
    must(::rename(path("pipe").c_str(), path("moved").c_str()), "rename");
    EXPECT_EQ(errnoOf([&] { return ::mkfifo(path("moved").c_str(), 0600); }), EEXIST);
    std::filesystem::remove(path("moved"));
    std::filesystem::remove(path("socket"));
    EXPECT_EQ(namesIn(disk().plain()), std::vector<std::string>{"file"});
}

TEST_F(DiskAmongDisksSpecialFilesTest, DeviceNodesAreKeptAndNotOpened)
{
    NIMBREL_NEED_ENCRYPTED_DISK();
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root makes device nodes";
    const int made =
        errnoOf([&] { return ::mknod(path("null").c_str(), S_IFCHR | 0666, ::makedev(1, 3)); });
    if (made == EPERM)
        GTEST_SKIP() << "device nodes are forbidden here";
    ASSERT_EQ(made, 0);
    EXPECT_TRUE(S_ISCHR(statusOf(path("null")).st_mode));
    EXPECT_EQ(statusOf(path("null")).st_rdev, ::makedev(1, 3));
    EXPECT_EQ(errnoOf([&] { return ::open(path("null").c_str(), O_RDONLY); }), EACCES);
}

} // namespace

} // namespace nimbrel::test
