#include "cli/PasswordLine.h"

#include "cli/CommandError.h"
#include "cli/PrintableText.h"
#include "config/UniqueFd.h"

#include <fmt/format.h>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace nimbrel {

namespace {

constexpr std::size_t longestPassword = 4096; // bytes; a terminal takes no longer line

[[noreturn]] void failReading(const std::string &name, int code)
{
    throw CommandError(ExitStatus::Failed,
                       fmt::format("Can't read the password from {}: {}", name, errorText(code)),
                       "Check --password-file");
}

} // namespace

std::optional<SecureBuffer> readFirstLine(const ByteReader &nextByte)
{
    SecureBuffer line(longestPassword + 1);
    std::size_t length = 0;
    bool ended = false;
    while (length < line.size() && !ended) {
        std::uint8_t &byte = line.bytes()[length];
        if (!nextByte(byte)) {
            if (length == 0)
                return std::nullopt;
            ended = true;
        } else if (byte == '\n') {
            ended = true;
        } else {
            ++length;
        }
    }
    if (!ended)
        throw CommandError(ExitStatus::Failed,
                           fmt::format("The password is over {} bytes long", longestPassword),
                           "Is it the right file?");
    return SecureBuffer::copyOf(line.text().substr(0, length));
}

ByteReader bytesOfDescriptor(int descriptor, std::string name)
{
    return [descriptor, name = std::move(name)](std::uint8_t &byte) {
        // One at a time: no buffer keeps a copy, and a second line stays for who asks next.
        for (;;) {
            const ssize_t got = ::read(descriptor, &byte, 1);
            if (got >= 0)
                return got == 1;
            if (errno != EINTR)
                failReading(name, errno);
        }
    };
}

SecureBuffer passwordOfFile(const std::string &path)
{
    const bool isInput = path == "-";
    const std::string name = isInput ? "standard input" : path;
    UniqueFd file;
    if (!isInput) {
        file.reset(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
        if (!file)
            failReading(name, errno);
    }
    const int descriptor = isInput ? STDIN_FILENO : file.get();
    std::optional<SecureBuffer> line = readFirstLine(bytesOfDescriptor(descriptor, name));
    if (!line)
        throw CommandError(ExitStatus::Failed, fmt::format("There is no password in {}", name),
                           "Its first line must be the password");
    return std::move(*line);
}

} // namespace nimbrel
