#include "cli/PasswordLine.h"

#include "cli/CommandError.h"
#include "cli/PrintableText.h"
#include "config/UniqueFd.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nimbrel {

namespace {

constexpr const char *nextStep = "Try the command by itself";

[[noreturn]] void fail(const std::string &cause)
{
    throw CommandError(ExitStatus::Failed, cause, nextStep);
}

// Starts `sh -c command` with `output` as its standard output.
pid_t start(const std::string &command, int output)
{
    posix_spawn_file_actions_t actions{};
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    std::string shell = "sh";
    std::string option = "-c";
    std::string script = command;
    const std::array<char *, 4> arguments{shell.data(), option.data(), script.data(), nullptr};
    pid_t child = -1;
    const int code =
        ::posix_spawn(&child, "/bin/sh", &actions, nullptr, arguments.data(), ::environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (code != 0)
        fail("The password command can't be started: " + errorText(code));
    return child;
}

int waitFor(pid_t child)
{
    int status = 0;
    while (::waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            fail("The password command got lost: " + errorText(errno));
    return status;
}

void requireSuccess(int status)
{
    if (WIFSIGNALED(status))
        fail(fmt::format("The password command was ended by signal {}", WTERMSIG(status)));
    if (WEXITSTATUS(status) != 0)
        fail(fmt::format("The password command failed with status {}", WEXITSTATUS(status)));
}

} // namespace

SecureBuffer passwordOfCommand(const std::string &command)
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        fail("The password command can't be started: " + errorText(errno));
    UniqueFd output(ends[0]);
    UniqueFd input(ends[1]);
    const pid_t child = start(command, input.get());
    input.reset();

    const ByteReader nextByte = bytesOfDescriptor(output.get(), "the password command");
    std::optional<SecureBuffer> line = readFirstLine(nextByte);
    // Further lines are let through, or the command would fail for the lack of a reader.
    SecureBuffer rest(1);
    while (line && nextByte(rest.bytes()[0]))
        continue;
    output.reset();
    requireSuccess(waitFor(child));
    if (!line)
        fail("The password command printed nothing");
    return std::move(*line);
}

} // namespace nimbrel
