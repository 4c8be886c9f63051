#include "OwnMounts.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <grp.h>
#include <sched.h>
#include <stdexcept>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

void mustBeZero(int result, const std::string &what)
{
    if (result != 0)
        throw std::runtime_error(what + ": " + std::strerror(errno));
}

std::string answerOf(const std::function<std::string()> &question)
{
    try {
        return question();
    } catch (const std::exception &exception) {
        return std::string("exception: ") + exception.what();
    }
}

[[noreturn]] void answerInto(int pipe, const std::function<std::string()> &question)
{
    const std::string answer = answerOf(question);
    const ssize_t written = ::write(pipe, answer.data(), answer.size());
    ::_exit(written == static_cast<ssize_t>(answer.size()) ? 0 : 1);
}

std::string readAll(int pipe)
{
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t got = 1; got > 0;) {
        got = ::read(pipe, buffer.data(), buffer.size());
        if (got > 0)
            text.append(buffer.data(), static_cast<std::size_t>(got));
    }
    return text;
}

bool becomeNobody()
{
    return ::setgroups(0, nullptr) == 0 && ::setresgid(nobody, nobody, nobody) == 0 &&
           ::setresuid(nobody, nobody, nobody) == 0 && ::prctl(PR_SET_DUMPABLE, 1, 0, 0, 0) == 0;
}

} // namespace

std::string enterOwnMounts()
{
    if (::geteuid() != 0)
        return "mounting is for root";
    if (::unshare(CLONE_NEWNS) != 0 ||
        ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return std::string("no mounts of its own: ") + std::strerror(errno);
    return "";
}

void bindMount(const std::string &folder, const std::string &mountPoint)
{
    mustBeZero(::mount(folder.c_str(), mountPoint.c_str(), nullptr, MS_BIND, nullptr),
               "bind mount at " + mountPoint);
}

void mountMemory(const std::string &mountPoint)
{
    mustBeZero(::mount("memory disk", mountPoint.c_str(), "tmpfs", 0, "size=4m,mode=0755"),
               "memory disk at " + mountPoint);
}

void unmountAll(const std::string &mountPoint)
{
    while (::umount2(mountPoint.c_str(), MNT_DETACH) == 0) {
    }
}

std::string inChild(const std::function<std::string()> &question)
{
    std::array<int, 2> ends{};
    mustBeZero(::pipe2(ends.data(), O_CLOEXEC), "pipe");
    const pid_t child = ::fork();
    if (child == 0)
        answerInto(ends[1], question);
    ::close(ends[1]);
    std::string answer = readAll(ends[0]);
    ::close(ends[0]);
    int status = -1;
    ::waitpid(child, &status, 0);
    return status == 0 ? answer : answer + " (the child failed)";
}

std::string asOrdinaryUser(const std::function<std::string()> &question)
{
    return inChild([&]() -> std::string {
        if (::geteuid() == 0 && !becomeNobody())
            return "can't become an ordinary user";
        return question();
    });
}

std::string whyNoOrdinaryUserIn(const std::string &folder)
{
    const std::string found = asOrdinaryUser(
        [&]() -> std::string { return ::access(folder.c_str(), X_OK) == 0 ? "" : "no way in"; });
    return found.empty() ? "" : folder + " is closed to ordinary users";
}

} // namespace nimbrel::test
