#include "cli/CommandParser.h"

#include "cli/CommandError.h"

#include <fmt/format.h>

#include <algorithm>

namespace nimbrel {

namespace {

// The parser reads "[a,b]" as a list and "++" as the end of a command; a path is neither.
void protectOddPaths(std::vector<std::string> &arguments)
{
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        std::string &argument = arguments[i];
        const bool looksLikeList = argument.starts_with('[') && argument.ends_with(']');
        if ((looksLikeList || argument == "++") && arguments[i - 1] != "--password-command")
            argument.insert(0, "./");
    }
}

// Only an option's name is repeated: what follows it, or stands alone, may be a secret that was
// meant as a password.
std::string describeExtra(const std::vector<std::string> &extras)
{
    for (const std::string &extra : extras) {
        if (extra.starts_with("--") && extra.size() > 2)
            return extra.substr(0, extra.find('=')) + " is an unknown option";
        if (extra.starts_with('-') && extra.size() > 1)
            return extra.substr(0, 2) + " is an unknown option";
    }
    return "There is an argument too many, or an unknown command";
}

} // namespace

std::string CommandParser::nextStep() const
{
    const std::vector<CLI::App *> given = _app.get_subcommands();
    const std::string command = given.empty() ? "" : given.front()->get_name() + " ";
    return fmt::format("See: nimbrelctl {}--help", command);
}

Command CommandParser::parse(std::vector<std::string> arguments)
{
    protectOddPaths(arguments);
    std::reverse(arguments.begin(), arguments.end()); // as the library wants them
    try {
        _app.parse(arguments);
    } catch (const CLI::Success &request) { // help or version
        (void)_app.exit(request);
        return [] { return ExitStatus::Done; };
    } catch (const CLI::ExtrasError &) {
        throw CommandError(ExitStatus::Usage, describeExtra(_app.remaining(true)), nextStep());
    } catch (const CLI::ParseError &error) {
        throw CommandError(ExitStatus::Usage, error.what(), nextStep());
    }
    return _chosen;
}

} // namespace nimbrel
