#include "cli/CommandError.h"

#include <string>

namespace nimbrel {

namespace {

std::string sentence(std::string_view text)
{
    std::string made(text);
    if (!made.empty() && std::string_view(".!?").find(made.back()) == std::string_view::npos)
        made += '.';
    return made;
}

std::string line(std::string_view cause, std::string_view nextStep)
{
    return nextStep.empty() ? sentence(cause) : sentence(cause) + " " + sentence(nextStep);
}

} // namespace

CommandError::CommandError(ExitStatus status, std::string_view cause, std::string_view nextStep)
    : std::runtime_error(line(cause, nextStep)), _status(status)
{
}

} // namespace nimbrel
