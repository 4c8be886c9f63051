#pragma once

#include <QString>

#include <optional>

namespace nimbrel {

struct Account
{
    QString name;
    QString homeFolder;
};

// This process's user in the system's list of accounts (passwd(5)); nothing when it isn't there.
[[nodiscard]] std::optional<Account> ownAccount();

} // namespace nimbrel
