#include "cli/PasswordPrompt.h"

#include "cli/CommandError.h"
#include "cli/PasswordLine.h"
#include "cli/PrintableText.h"
#include "cli/SignalSet.h"
#include "config/UniqueFd.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace nimbrel {

namespace {

// The terminal shows nothing of what is typed while this lives.
class SilentTerminal final
{
public:
    explicit SilentTerminal(int terminal) : _terminal(terminal)
    {
        if (::tcgetattr(terminal, &_before) != 0)
            throw CommandError(ExitStatus::Failed,
                               "The terminal can't be asked: " + errorText(errno));
        termios silent = _before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
        // What was typed ahead was visible, so it isn't taken for a password.
        if (::tcsetattr(terminal, TCSAFLUSH, &silent) != 0)
            throw CommandError(ExitStatus::Failed,
                               "The terminal's echo can't be turned off: " + errorText(errno));
    }
    ~SilentTerminal() { (void)::tcsetattr(_terminal, TCSADRAIN, &_before); }
    SilentTerminal(const SilentTerminal &) = delete;
    SilentTerminal &operator=(const SilentTerminal &) = delete;

private:
    int _terminal;
    termios _before{};
};

struct Answer
{
    std::optional<SecureBuffer> line;
    int signal = 0; // that came instead of an answer; 0 for none
};

void write(int terminal, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t wrote = ::write(terminal, text.data(), text.size());
        if (wrote <= 0)
            return; // a terminal that takes no text gives no answer either
        text.remove_prefix(static_cast<std::size_t>(wrote));
    }
}

// Waits for a byte to read or a signal; the signal's number, or 0.
int signalBeforeByte(int terminal, const SignalSet &signals)
{
    std::array<pollfd, 2> waited{pollfd{terminal, POLLIN, 0}, {signals.descriptor(), POLLIN, 0}};
    while (::poll(waited.data(), waited.size(), -1) < 0)
        if (errno != EINTR)
            throw CommandError(ExitStatus::Failed, "The terminal got lost: " + errorText(errno));
    return waited[1].revents != 0 ? signals.take() : 0;
}

Answer ask(int terminal, std::string_view prompt)
{
    const SignalSet signals({SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGTSTP});
    const SilentTerminal silent(terminal);
    write(terminal, prompt);
    Answer answer;
    const ByteReader read = bytesOfDescriptor(terminal, "the terminal");
    std::optional<SecureBuffer> line = readFirstLine([&](std::uint8_t &byte) {
        answer.signal = signalBeforeByte(terminal, signals);
        return answer.signal == 0 && read(byte);
    });
    if (answer.signal == 0)
        answer.line = std::move(line);
    write(terminal, "\n");
    return answer;
}

} // namespace

SecureBuffer promptForPassword(std::string_view prompt)
{
    const UniqueFd terminal(::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY));
    if (!terminal)
        throw CommandError(ExitStatus::Usage, "There is no terminal to ask for the password",
                           "Give --password-file FILE or --password-command CMD");
    for (;;) {
        Answer answer = ask(terminal.get(), prompt);
        if (answer.line)
            return std::move(*answer.line);
        if (answer.signal == 0)
            throw CommandError(ExitStatus::Failed, "No password was given", "Try again");
        ::raise(answer.signal); // comes back from a stop, or where the signal is ignored
    }
}

} // namespace nimbrel
