#include "cli/Terminal.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <pty.h>
#include <stdexcept>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

namespace nimbrel::test {

namespace {

[[noreturn]] void become(int terminal, const std::vector<std::string> &command,
                         const std::vector<std::string> &environment)
{
    if (::login_tty(terminal) != 0)
        ::_exit(126);
    for (const std::string &entry : environment)
        ::putenv(const_cast<char *>(entry.c_str())); // NOLINT: a copy of this process
    std::vector<char *> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string &argument : command)
        arguments.push_back(const_cast<char *>(argument.c_str())); // NOLINT: execvp's own type
    arguments.push_back(nullptr);
    ::execvp(arguments[0], arguments.data());
    ::_exit(127);
}

} // namespace

Terminal::Terminal(const std::vector<std::string> &command,
                   const std::vector<std::string> &environment)
{
    if (::openpty(&_master, &_kept, nullptr, nullptr, nullptr) != 0)
        throw std::runtime_error("no pseudo terminal");
    ::fcntl(_master, F_SETFD, FD_CLOEXEC);
    ::fcntl(_master, F_SETFL, O_NONBLOCK);
    _child = ::fork();
    if (_child < 0)
        throw std::runtime_error("no process for the terminal"); // a kill of -1 would hit all
    if (_child == 0) {
        ::close(_master);
        become(_kept, command, environment);
    }
    ::fcntl(_kept, F_SETFD, FD_CLOEXEC);
}

Terminal::~Terminal()
{
    if (!_status) {
        ::kill(_child, SIGKILL);
        (void)wait();
    }
    ::close(_kept);
    ::close(_master);
}

void Terminal::read()
{
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t got = ::read(_master, buffer.data(), buffer.size());
        if (got <= 0)
            return;
        _screen.append(buffer.data(), static_cast<std::size_t>(got));
    }
}

bool Terminal::shows(std::string_view text)
{
    const bool found = eventually([&] {
        read();
        return _screen.find(text, _seen) != std::string::npos;
    });
    if (found)
        _seen = _screen.find(text, _seen) + text.size();
    return found;
}

void Terminal::type(std::string_view text) const
{
    if (::write(_master, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("the terminal takes no input");
}

bool Terminal::echoes() const
{
    termios settings{};
    if (::tcgetattr(_kept, &settings) != 0)
        throw std::runtime_error("the terminal has no settings");
    return (settings.c_lflag & ECHO) != 0;
}

std::optional<int> Terminal::wait()
{
    if (!_status)
        (void)eventually([&] {
            read();
            int waited = 0;
            if (::waitpid(_child, &waited, WNOHANG) != _child)
                return false;
            _status = WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited);
            return true;
        });
    read();
    return _status;
}

} // namespace nimbrel::test
