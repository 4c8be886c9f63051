#include "support/Process.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace nimbrel::test {

namespace {

// Input and output go through memory files: no pipe can fill up, no thread is needed. Their numbers
// lie above those of the standard streams, also where this process has none.
int memoryFile(const std::string &content)
{
    const int made = ::memfd_create("nimbrel-test", MFD_CLOEXEC);
    const int file = ::fcntl(made, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    ::close(made);
    if (file < 0 ||
        ::pwrite(file, content.data(), content.size(), 0) != static_cast<ssize_t>(content.size()))
        throw std::runtime_error("no memory file");
    return file;
}

std::string takeAll(int file)
{
    std::string text;
    std::array<char, 65536> buffer{};
    off_t offset = 0;
    for (;;) {
        const ssize_t got = ::pread(file, buffer.data(), buffer.size(), offset);
        if (got <= 0)
            return text;
        text.append(buffer.data(), static_cast<std::size_t>(got));
        offset += got;
    }
}

[[noreturn]] void become(const std::vector<std::string> &command, const RunOptions &options)
{
    if (options.user) {
        const uid_t user = *options.user;
        const passwd *const account = ::getpwuid(user); // NOLINT: one thread
        const gid_t group = account == nullptr ? user : account->pw_gid;
        if (::setgroups(0, nullptr) != 0 || ::setgid(group) != 0 || ::setuid(user) != 0)
            ::_exit(126);
    }
    if (!options.folder.empty() && ::chdir(options.folder.c_str()) != 0)
        ::_exit(126);
    for (const std::string &entry : options.environment)
        ::putenv(const_cast<char *>(entry.c_str())); // NOLINT: a copy of this process
    std::vector<char *> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string &argument : command)
        arguments.push_back(const_cast<char *>(argument.c_str())); // NOLINT: execvp's own type
    arguments.push_back(nullptr);
    ::execvp(arguments[0], arguments.data());
    ::_exit(127);
}

pid_t start(const std::vector<std::string> &command, const RunOptions &options, int input,
            int output, int error)
{
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child != 0)
        return child;
    // The parent may have gone before this was asked for.
    if (options.endsWithThread &&
        (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || ::getppid() != parent))
        ::_exit(126);
    // A test runner may have changed these; programs start with the defaults.
    ::signal(SIGPIPE, SIG_DFL);
    ::signal(SIGCHLD, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::dup2(input, 0);
    ::dup2(output, 1);
    ::dup2(error, 2);
    become(command, options);
}

int statusOf(int waited)
{
    return WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited);
}

// The status within `limit`, or nothing.
std::optional<int> waitFor(pid_t process, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    auto pause = std::chrono::microseconds(200);
    for (;;) {
        int waited = 0;
        const pid_t got = ::waitpid(process, &waited, WNOHANG);
        if (got == process)
            return statusOf(waited);
        if (got < 0)
            return -1;
        if (std::chrono::steady_clock::now() > end)
            return std::nullopt;
        std::this_thread::sleep_for(pause);
        pause = std::min<std::chrono::microseconds>(pause * 2, std::chrono::milliseconds(10));
    }
}

} // namespace

void sleepBriefly()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

RunResult run(const std::vector<std::string> &command, const RunOptions &options)
{
    const int input = memoryFile(options.input);
    const int output = memoryFile("");
    const int error = memoryFile("");
    const pid_t child = start(command, options, input, output, error);
    RunResult result;
    std::optional<int> status = waitFor(child, options.limit);
    if (!status) {
        ::kill(child, SIGKILL);
        status = waitFor(child, std::chrono::seconds(30));
    }
    result.status = status.value_or(-1);
    result.output = takeAll(output);
    result.error = takeAll(error);
    for (const int file : {input, output, error})
        ::close(file);
    return result;
}

RunResult shell(const std::string &script, const RunOptions &options)
{
    return run({"sh", "-c", script}, options);
}

RunningProcess::RunningProcess(const std::vector<std::string> &command, const RunOptions &options)
    : _log(memoryFile(""))
{
    const int input = memoryFile(options.input);
    // Both streams append to one file.
    ::fcntl(_log, F_SETFL, O_APPEND);
    _process = start(command, options, input, _log, _log);
    ::close(input);
}

RunningProcess::~RunningProcess()
{
    if (!_status) {
        ::kill(_process, SIGKILL);
        (void)wait(std::chrono::seconds(30));
    }
    ::close(_log);
}

void RunningProcess::signal(int number) const
{
    ::kill(_process, number);
}

std::optional<int> RunningProcess::wait(std::chrono::seconds limit)
{
    if (!_status)
        _status = waitFor(_process, limit);
    return _status;
}

std::string RunningProcess::log() const
{
    return takeAll(_log);
}

} // namespace nimbrel::test
