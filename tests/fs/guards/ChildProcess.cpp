#include "fs/guards/ChildProcess.h"

#include "config/UniqueFd.h"
#include "support/TempFolder.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

constexpr int exitFailed = 1;
constexpr int exitSkipped = 77;
constexpr uid_t ordinaryUser = 54321;

// The body's verdict as an exit status.
int verdictOf(const std::function<void()> &body)
{
    try {
        body();
    } catch (const std::exception &error) {
        ADD_FAILURE() << error.what();
    }
    return testing::Test::HasFailure() ? exitFailed : 0;
}

// `prepare` says why it can't be; empty when all is ready.
ChildResult inChild(const std::function<std::string()> &prepare, const std::function<void()> &body)
{
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        const std::string why = prepare();
        if (!why.empty())
            std::fprintf(stderr, "skipped: %s\n", why.c_str());
        const int status = why.empty() ? verdictOf(body) : exitSkipped;
        std::fflush(nullptr);
        ::_exit(status);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child)
        return {};
    if (WIFEXITED(status) && WEXITSTATUS(status) == exitSkipped)
        return {true, "this process may not do that here"};
    return {WIFEXITED(status) && WEXITSTATUS(status) == 0, {}};
}

std::string failed(const std::string &what)
{
    return what + ": " + std::strerror(errno);
}

std::string mountStore(const std::string &folder, std::size_t size)
{
    if (::unshare(CLONE_NEWNS) != 0)
        return failed("unshare");
    if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return failed("private mounts");
    const std::string options = "mode=0755,size=" + std::to_string(size);
    if (::mount("tmpfs", folder.c_str(), "tmpfs", 0, options.c_str()) != 0)
        return failed("tmpfs");
    return {};
}

std::string becomeOrdinary(const std::string &folder)
{
    // The way to the folder may be closed for other users; from inside it is open.
    if (::chown(folder.c_str(), ordinaryUser, ordinaryUser) != 0 || ::chdir(folder.c_str()) != 0)
        return failed("folder");
    if (::setgroups(0, nullptr) != 0 || ::setgid(ordinaryUser) != 0 || ::setuid(ordinaryUser) != 0)
        return failed("user");
    return {};
}

bool writeMap(const char *path, const std::string &text)
{
    const UniqueFd file(::open(path, O_WRONLY | O_CLOEXEC));
    return file &&
           ::write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

std::string becomeLonelyRoot()
{
    const std::string user = "0 " + std::to_string(::geteuid()) + " 1";
    const std::string group = "0 " + std::to_string(::getegid()) + " 1";
    if (::unshare(CLONE_NEWUSER) != 0)
        return failed("user namespace");
    if (!writeMap("/proc/self/setgroups", "deny") || !writeMap("/proc/self/uid_map", user) ||
        !writeMap("/proc/self/gid_map", group))
        return failed("user map");
    return {};
}

} // namespace

ChildResult onSmallStore(std::size_t size, const std::function<void(const std::string &)> &body)
{
    if (::geteuid() != 0)
        return {true, "only root mounts a store"};
    const TempFolder temp;
    const std::string folder = temp.makeFolder("small");
    return inChild([&] { return mountStore(folder, size); }, [&] { body(folder); });
}

ChildResult asOrdinaryUser(const std::function<void(const std::string &)> &body)
{
    const TempFolder temp;
    const std::string folder = temp.makeFolder("own");
    if (::geteuid() != 0)
        return {verdictOf([&] { body(folder); }) == 0, {}};
    return inChild([&] { return becomeOrdinary(folder); }, [&] { body("/proc/self/cwd"); });
}

ChildResult asLonelyRoot(const std::function<void(const std::string &)> &body)
{
    const TempFolder temp;
    const std::string folder = temp.makeFolder("own");
    return inChild(becomeLonelyRoot, [&] { body(folder); });
}

void expectPassed(const ChildResult &result)
{
    if (!result.skipped.empty())
        GTEST_SKIP() << result.skipped;
    EXPECT_TRUE(result.passed) << "see what the child process printed";
}

} // namespace nimbrel::test
