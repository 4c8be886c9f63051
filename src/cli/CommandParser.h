#pragma once

#include "cli/CreateCommand.h"
#include "cli/InfoCommand.h"
#include "cli/MountCommand.h"
#include "cli/PasswdCommand.h"
#include "cli/PathTranslation.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <vector>

namespace nimbrel {

using Command = std::function<ExitStatus()>;

// The parser, and what its options fill.
class CommandParser final
{
public:
    CommandParser();
    CommandParser(const CommandParser &) = delete;
    CommandParser &operator=(const CommandParser &) = delete;

    // What the arguments (without the program's name) ask for; it needs this object to run. Throws
    // CommandError (Usage).
    [[nodiscard]] Command parse(std::vector<std::string> arguments);

private:
    [[nodiscard]] std::string nextStep() const;
    CLI::App *addCommand(const std::string &name, const std::string &summary, const char *help,
                         Command command);
    void addCreate();
    void addMount();
    void addUnmount();
    void addPasswd();
    void addInfo();
    void addTranslation(const std::string &name, const std::string &summary, const char *help,
                        TranslationOptions &options, ExitStatus (*run)(const TranslationOptions &));

    CLI::App _app{"Keeps a folder encrypted and shows it decrypted as a disk.", "nimbrelctl"};
    Command _chosen;
    CreateOptions _create;
    MountCommandOptions _mount;
    std::string _unmount;
    PasswdOptions _passwd;
    InfoOptions _info;
    TranslationOptions _encode;
    TranslationOptions _decode;
};

} // namespace nimbrel
