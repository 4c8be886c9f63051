#include "platform/Account.h"

#include <QFile>

#include <cerrno>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace nimbrel {

std::optional<Account> ownAccount()
{
    constexpr std::size_t maximumSize = std::size_t{1} << 20U;
    for (std::size_t size = 1024; size <= maximumSize; size *= 2) {
        std::vector<char> buffer(size);
        struct passwd entry = {};
        struct passwd *found = nullptr;
        const int error = ::getpwuid_r(::geteuid(), &entry, buffer.data(), size, &found);
        if (error == ERANGE)
            continue;
        if (error != 0 || found == nullptr)
            return std::nullopt;
        return Account{QFile::decodeName(entry.pw_name), QFile::decodeName(entry.pw_dir)};
    }
    return std::nullopt;
}

} // namespace nimbrel
