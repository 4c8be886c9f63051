#include "mount/DaemonFacts.h"

#include "support/MountInfo.h"
#include "mount/MountedFolder.h"
#include "support/Process.h"

#include <charconv>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <sys/vfs.h>

namespace nimbrel::test {

namespace {

struct ProcessState
{
    char state = 'X';
    pid_t parent = 0;
};

// Nothing readable means that it has gone meanwhile.
ProcessState stateOf(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    std::getline(file, line);
    ProcessState state;
    const std::size_t afterName = line.rfind(')'); // a program's name may hold anything
    if (afterName == std::string::npos)
        return state;
    std::istringstream fields(line.substr(afterName + 1));
    fields >> state.state >> state.parent;
    return state;
}

std::vector<pid_t> processes()
{
    std::vector<pid_t> all;
    for (const auto &entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        pid_t number = 0;
        const auto read = std::from_chars(name.data(), name.data() + name.size(), number);
        if (read.ec == std::errc() && *read.ptr == '\0')
            all.push_back(number);
    }
    return all;
}

} // namespace

std::vector<pid_t> descendants(pid_t process)
{
    std::vector<pid_t> family;
    for (const pid_t other : processes()) {
        if (stateOf(other).parent != process)
            continue;
        family.push_back(other);
        for (const pid_t grandchild : descendants(other))
            family.push_back(grandchild);
    }
    return family;
}

bool isAlive(pid_t process)
{
    const char state = stateOf(process).state;
    return state != 'X' && state != 'Z';
}

std::uint64_t residentKiB(pid_t process)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:"))
            return std::stoull(line.substr(6));
    }
    throw std::runtime_error("no VmRSS of process " + std::to_string(process));
}

void killWithHelpers(MountedFolder &disk)
{
    for (const pid_t helper : descendants(disk.daemon()))
        ::kill(helper, SIGKILL);
    disk.kill();
}

// The kernel keeps no copy of this answer: it comes from the program, and not from a dead disk or
// from the bare folder below.
bool comesUp(const MountedFolder &disk)
{
    constexpr auto fuse = 0x65735546;
    struct statfs answer = {};
    return eventually(
        [&] { return ::statfs(disk.plain().c_str(), &answer) == 0 && answer.f_type == fuse; });
}

bool goesAway(const MountedFolder &disk)
{
    return eventually([&] { return !mountedAt(disk.plain()); });
}

} // namespace nimbrel::test
