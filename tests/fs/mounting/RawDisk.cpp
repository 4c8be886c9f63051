#include "RawDisk.h"

#include "fs/Unmounting.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <linux/fuse.h>
#include <stdexcept>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

constexpr const char *source = "/somewhere/Raw.nmc";

int mountAsRoot(const std::string &point)
{
    UniqueFd connection(::open("/dev/fuse", O_RDWR | O_CLOEXEC));
    const std::string options =
        fmt::format("fd={},rootmode=40000,user_id=0,group_id=0", connection.get());
    if (!connection ||
        ::mount(source, point.c_str(), "fuse.nimbrel", MS_NOSUID | MS_NODEV, options.c_str()) != 0)
        return -1;
    return connection.release();
}

// fusermount3 hands the connection over through a socket, beside one byte of data.
int receiveDescriptor(int line)
{
    char byte = 0;
    iovec data = {&byte, 1};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    msghdr message{};
    message.msg_iov = &data;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    if (::recvmsg(line, &message, MSG_CMSG_CLOEXEC) <= 0)
        return -1;
    const cmsghdr *header = CMSG_FIRSTHDR(&message);
    if (header == nullptr || header->cmsg_type != SCM_RIGHTS)
        return -1;
    int descriptor = -1;
    std::memcpy(&descriptor, CMSG_DATA(header), sizeof descriptor);
    return descriptor;
}

int mountAsUser(const std::string &point)
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return -1;
    const UniqueFd own(ends[0]);
    UniqueFd other(ends[1]);
    const std::string options = fmt::format("fsname={},subtype=nimbrel", source);
    const std::string line = fmt::format("_FUSE_COMMFD={}", other.get());
    const pid_t child = ::fork();
    if (child == 0) {
        ::fcntl(other.get(), F_SETFD, 0);
        ::putenv(const_cast<char *>(line.c_str())); // NOLINT: a copy of this process
        ::execlp("fusermount3", "fusermount3", "-o", options.c_str(), "--", point.c_str(),
                 static_cast<char *>(nullptr));
        ::_exit(127);
    }
    other.reset();
    const int connection = receiveDescriptor(own.get());
    ::waitpid(child, nullptr, 0);
    return connection;
}

} // namespace

std::string whyNoRawDisk()
{
    if (::access("/dev/fuse", F_OK) != 0)
        return "there is no /dev/fuse";
    if (::geteuid() == 0)
        return ::access("/dev/fuse", W_OK) == 0 ? "" : "/dev/fuse may not be opened";
    return ::access("/usr/bin/fusermount3", X_OK) == 0 ? "" : "there is no fusermount3";
}

RawDisk::RawDisk(const std::string &mountPoint)
    : _point(mountPoint),
      _connection(::geteuid() == 0 ? mountAsRoot(mountPoint) : mountAsUser(mountPoint))
{
    if (!_connection)
        throw std::runtime_error("no raw disk at " + mountPoint + ": " + std::strerror(errno));
}

RawDisk::~RawDisk()
{
    _connection.reset();
    (void)detachDisk(_point); // a test may have taken it away
}

void RawDisk::leaveOneQuestionOpen()
{
    alignas(fuse_in_header) std::array<char, 1U << 18U> request{};
    fuse_in_header greeting{};
    (void)!::read(_connection.get(), request.data(), request.size());
    std::memcpy(&greeting, request.data(), sizeof greeting);
    struct
    {
        fuse_out_header header;
        fuse_init_out body;
    } answer{};
    answer.header = {sizeof answer, 0, greeting.unique};
    answer.body.major = FUSE_KERNEL_VERSION;
    answer.body.minor = FUSE_KERNEL_MINOR_VERSION;
    answer.body.max_write = 4096;
    (void)!::write(_connection.get(), &answer, sizeof answer);
    (void)!::read(_connection.get(), request.data(), request.size());
}

UniqueFd RawDisk::hold() const
{
    return UniqueFd(::open(_point.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

} // namespace nimbrel::test
