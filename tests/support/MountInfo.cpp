#include "support/MountInfo.h"

#include "config/UniqueFd.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

// The table writes space, tab, newline and backslash as three octal digits.
std::string unescaped(const std::string &text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 3 >= text.size()) {
            result.push_back(text[i]);
            continue;
        }
        result.push_back(static_cast<char>(std::stoi(text.substr(i + 1, 3), nullptr, 8)));
        i += 3;
    }
    return result;
}

// As root no helper program is asked: the mount stands as soon as the kernel takes it.
std::string whyNoMountAsRoot(const std::string &folder)
{
    const UniqueFd device(::open("/dev/fuse", O_RDWR | O_CLOEXEC));
    const std::string data = "fd=" + std::to_string(device.get()) +
                             ",rootmode=40000,user_id=" + std::to_string(::getuid()) +
                             ",group_id=" + std::to_string(::getgid());
    if (::mount("nimbrel-probe", folder.c_str(), "fuse", MS_NOSUID | MS_NODEV, data.c_str()) != 0)
        return std::string("mounting is forbidden here: ") + std::strerror(errno);
    ::umount2(folder.c_str(), MNT_DETACH);
    return {};
}

// fusermount3 mounts and hands the device over through the socket that it is given.
std::string whyNoMountAsUser(const std::string &folder)
{
    int ends[2] = {-1, -1};
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0)
        return std::string("no socket pair: ") + std::strerror(errno);
    const UniqueFd ours(ends[0]);
    const UniqueFd theirs(ends[1]);
    const RunResult mounted = run({"fusermount3", "--", folder},
                                  {.environment = {"_FUSE_COMMFD=" + std::to_string(ends[1])}});
    if (mounted.status == 127)
        return "fusermount3 is not installed";
    if (mounted.status != 0)
        return "fusermount3 can't mount here: " + mounted.error;
    detachAll(folder);
    return {};
}

} // namespace

std::optional<std::string> mountedAt(const std::string &path)
{
    std::ifstream table("/proc/self/mountinfo");
    std::optional<std::string> type;
    for (std::string line; std::getline(table, line);) {
        std::istringstream fields(line);
        std::string field;
        for (int i = 0; i < 5; ++i)
            fields >> field;
        if (unescaped(field) != path)
            continue;
        while (fields >> field && field != "-") {
        }
        fields >> field;
        type = field; // the last line of a path is the topmost mount
    }
    return type;
}

void detachAll(const std::string &path)
{
    constexpr int stacked = 8; // a bound for a mount that doesn't go
    for (int i = 0; i < stacked && mountedAt(path); ++i) {
        if (::umount2(path.c_str(), MNT_DETACH | UMOUNT_NOFOLLOW) != 0)
            (void)run({"fusermount3", "-u", "-z", "--", path});
    }
}

std::string whyNoMounts()
{
    if (::access("/dev/fuse", F_OK) != 0)
        return "no /dev/fuse on this machine";
    if (::geteuid() == 0)
        ::chmod("/dev/fuse", 0666);
    if (const UniqueFd device(::open("/dev/fuse", O_RDWR | O_CLOEXEC)); !device)
        return std::string("/dev/fuse can't be opened: ") + std::strerror(errno);
    const TempFolder temp;
    const std::string folder = temp.makeFolder("probe");
    return ::geteuid() == 0 ? whyNoMountAsRoot(folder) : whyNoMountAsUser(folder);
}

} // namespace nimbrel::test
