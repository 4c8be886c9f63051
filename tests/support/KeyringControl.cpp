#include "support/KeyringControl.h"

#include "config/UniqueFd.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

// gnome-keyring's control protocol (its source, daemon/control/gkd-control-codes.h): numbers are
// 32 bits, big-endian; a request is its whole length, the operation, the arguments, each text with
// its length before it; the answer is its length and the result, 0 for done.
constexpr std::uint32_t unlockOperation = 1;
constexpr std::size_t answerSize = 8;

std::string number(std::size_t value)
{
    std::string bytes(4, '\0');
    for (std::size_t i = 0; i < 4; ++i)
        bytes[i] = static_cast<char>((value >> (8 * (3 - i))) & 0xFF);
    return bytes;
}

std::string unlockRequest(std::string_view password)
{
    const std::string body =
        number(unlockOperation) + number(password.size()) + std::string(password);
    return number(body.size() + 4) + body;
}

bool connectTo(int file, const std::string &path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return false;
    std::copy(path.begin(), path.end(), static_cast<char *>(address.sun_path));
    return ::connect(file, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
}

bool sendAll(int file, const std::string &bytes)
{
    return ::send(file, bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(bytes.size());
}

} // namespace

bool unlockLoginKeyring(const std::string &socket, std::string_view password)
{
    const UniqueFd file(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    // The first byte carries the sender's credentials.
    if (!file || !connectTo(file.get(), socket) || !sendAll(file.get(), std::string(1, '\0')) ||
        !sendAll(file.get(), unlockRequest(password)))
        return false;
    std::array<char, answerSize> answer{};
    return ::recv(file.get(), answer.data(), answer.size(), MSG_WAITALL) ==
               static_cast<ssize_t>(answer.size()) &&
           std::all_of(answer.begin() + 4, answer.end(), [](char byte) { return byte == 0; });
}

} // namespace nimbrel::test
