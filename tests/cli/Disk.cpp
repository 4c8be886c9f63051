#include "cli/Disk.h"

#include "fs/MountTable.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <pwd.h>
#include <unistd.h>

namespace nimbrel::test {

namespace files = std::filesystem;

namespace {

// Empty where the process ends meanwhile; a stream would throw then.
std::string argumentsOf(const std::string &path)
{
    std::string text;
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    std::array<char, 4096> buffer{};
    for (ssize_t got = 1; file >= 0 && got > 0;) {
        got = ::read(file, buffer.data(), buffer.size());
        text.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    }
    ::close(file);
    return text;
}

} // namespace

std::string whyNoDisk()
{
    if (::access("/dev/fuse", F_OK) != 0)
        return "there is no /dev/fuse here";
    if (::geteuid() == 0) {
        const int device = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
        if (device < 0)
            return "/dev/fuse can't be opened here";
        ::close(device);
    } else if (shell("command -v fusermount3").status != 0) {
        return "fusermount3 isn't installed";
    } else if (::getpwuid(::geteuid()) == nullptr) { // NOLINT: one thread
        return "this user has no name, which fusermount3 asks for";
    }
    return {};
}

Disk::Disk(const Workbench &bench, std::string_view name)
    : _bench(bench), _path(bench.makeFolder(name))
{
}

Disk::~Disk()
{
    while (isMounted())
        if (shell("umount -l '" + _path + "' || fusermount3 -u -z '" + _path + "'").status != 0)
            return;
    // A process that is stuck shows itself in the test that made it.
    (void)eventually([&] { return processes().empty(); }, std::chrono::seconds(10));
}

RunResult Disk::mount(const std::string &folder, std::vector<std::string> arguments) const
{
    arguments.insert(arguments.begin(),
                     {"mount", folder, _path, "--password-file", _bench.passwordFile("p")});
    return _bench.nimbrelctl(arguments);
}

bool Disk::isMounted() const
{
    return mountAt(_path).has_value();
}

std::vector<pid_t> Disk::processes() const
{
    std::vector<pid_t> found;
    std::error_code ignored; // processes come and go
    for (files::directory_iterator it("/proc", ignored), end; it != end; it.increment(ignored)) {
        const std::string name = it->path().filename();
        if (!std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; }))
            continue;
        if (argumentsOf(it->path() / "cmdline").find(_path + '\0') != std::string::npos)
            found.push_back(static_cast<pid_t>(std::stol(name)));
    }
    return found;
}

bool Disk::killServer() const
{
    const std::vector<pid_t> found = processes();
    // Stopped first, or the one that dies last would still see the other's end.
    for (const int signal : {SIGSTOP, SIGKILL})
        for (const pid_t process : found)
            ::kill(process, signal);
    return eventually([&] { return processes().empty(); });
}

} // namespace nimbrel::test
