#include "cli/CommandLine.h"

#include "cli/CommandParser.h"

#include <memory>

namespace nimbrel {

std::function<ExitStatus()> parseCommandLine(int count, const char *const *arguments)
{
    const auto parser = std::make_shared<CommandParser>();
    const Command command = parser->parse({arguments + 1, arguments + count});
    return [parser, command] { return command(); };
}

} // namespace nimbrel
