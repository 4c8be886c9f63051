#include "cli/PasswordSource.h"

#include "cli/CommandError.h"
#include "cli/PasswordLine.h"
#include "cli/PasswordPrompt.h"
#include "cli/PrintableText.h"

#include <fmt/format.h>

namespace nimbrel {

namespace {

SecureBuffer passwordOf(const PasswordSource &source, const std::string &prompt)
{
    if (!source.file.empty())
        return passwordOfFile(source.file);
    if (!source.command.empty())
        return passwordOfCommand(source.command);
    return promptForPassword(prompt);
}

} // namespace

SecureBuffer currentPassword(const PasswordSource &source, const std::string &folder)
{
    return passwordOf(source, fmt::format("Password for {}: ", printable(folder)));
}

SecureBuffer chosenPassword(const PasswordSource &source, const std::string &folder)
{
    SecureBuffer password =
        passwordOf(source, fmt::format("New password for {}: ", printable(folder)));
    if (password.empty())
        throw CommandError(ExitStatus::Failed, "An empty password protects nothing", "Choose one");
    if (source.asks() && promptForPassword("The same password again: ").text() != password.text())
        throw CommandError(ExitStatus::Failed, "The two passwords differ",
                           "Nothing was changed; try again");
    return password;
}

} // namespace nimbrel
