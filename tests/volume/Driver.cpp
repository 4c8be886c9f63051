#include "volume/Driver.h"

#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace nimbrel::test {

namespace {

// The program, where the user can reach it: the project may lie in a folder that is closed to
// others.
std::string programFor(std::optional<uid_t> user)
{
    if (!user)
        return NIMBREL_VOLUME_DRIVER;
    static const TempFolder folder;
    const std::string program = folder / "driver";
    if (!std::filesystem::exists(program)) {
        std::filesystem::copy_file(NIMBREL_VOLUME_DRIVER, program);
        std::filesystem::permissions(program, std::filesystem::perms(0755));
    }
    return program;
}

RunOptions optionsFor(const PrivateDesktop &desktop, const std::vector<DriverCommand> &commands,
                      std::optional<uid_t> user)
{
    RunOptions options;
    for (const DriverCommand &command : commands)
        for (std::size_t i = 0; i < command.size(); ++i)
            options.input += command[i] + (i + 1 < command.size() ? '\t' : '\n');
    options.environment = desktop.environment();
    options.user = user;
    return options;
}

} // namespace

std::unique_ptr<RunningProcess> startDriver(const PrivateDesktop &desktop,
                                            const std::vector<DriverCommand> &commands,
                                            std::optional<uid_t> user)
{
    return std::make_unique<RunningProcess>(std::vector<std::string>{programFor(user)},
                                            optionsFor(desktop, commands, user));
}

std::string runDriver(const PrivateDesktop &desktop, const std::vector<DriverCommand> &commands,
                      std::optional<uid_t> user)
{
    const RunResult result = run({programFor(user)}, optionsFor(desktop, commands, user));
    if (result.status != 0)
        throw std::runtime_error("the session ended with " + std::to_string(result.status) + ": " +
                                 result.output + result.error);
    return result.output;
}

long countLines(const std::string &log, const std::string &line)
{
    std::istringstream lines(log);
    long count = 0;
    for (std::string found; std::getline(lines, found);)
        count += found == line ? 1 : 0;
    return count;
}

} // namespace nimbrel::test
