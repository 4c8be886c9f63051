// The commands and options that there are.
#include "cli/CommandParser.h"

#include "cli/DecodeCommand.h"
#include "cli/EncodeCommand.h"
#include "cli/HelpTexts.h"
#include "cli/UnmountCommand.h"

#include <fmt/format.h>

#include <charconv>

namespace nimbrel {

namespace {

void addFolder(CLI::App &command, std::string &folder, const std::string &summary)
{
    command.add_option("FOLDER", folder, summary)->required()->option_text(" ");
}

void addPassword(CLI::App &command, PasswordSource &source)
{
    CLI::Option *file = command.add_option("--password-file", source.file,
                                           "Take the password from the first line of FILE; - is "
                                           "standard input");
    file->option_text("FILE");
    command
        .add_option("--password-command", source.command,
                    "Take it from the first line that the shell command CMD prints")
        ->option_text("CMD")
        ->excludes(file);
}

std::string judgeBlockSize(const std::string &text)
{
    constexpr std::int64_t largest = std::int64_t{64} * 1024 * 1024;
    std::int64_t size = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, size);
    const bool isGood =
        error == std::errc() && stop == end && size >= 16 && size <= largest && size % 16 == 0;
    return isGood ? "" : fmt::format("{} is not a multiple of 16 from 16 to {}", text, largest);
}

} // namespace

CommandParser::CommandParser()
{
    _app.require_subcommand(1);
    _app.set_help_flag("-h,--help", "Show this help and end");
    _app.set_version_flag("--version", "nimbrelctl " NIMBREL_VERSION, "Show the version and end");
    _app.footer(help::program);
    addCreate();
    addMount();
    addUnmount();
    addPasswd();
    addInfo();
    addTranslation("encode", "Tell the encrypted paths of plain ones", help::encode, _encode,
                   runEncode);
    addTranslation("decode", "Tell the plain paths of encrypted ones", help::decode, _decode,
                   runDecode);
}

CLI::App *CommandParser::addCommand(const std::string &name, const std::string &summary,
                                    const char *help, Command command)
{
    CLI::App *added = _app.add_subcommand(name, summary);
    added->footer(help);
    added->callback([this, command = std::move(command)] { _chosen = command; });
    return added;
}

void CommandParser::addCreate()
{
    CLI::App &command = *addCommand("create", "Make an encrypted folder", help::create,
                                    [this] { return runCreate(_create); });
    addFolder(command, _create.folder, "The folder to make");
    command.add_flag("--plain-names", _create.plainNames,
                     "Encrypt the files' content alone, not their names");
    command.add_option("--key-size", _create.keySize, "128, 192 or 256 bits (default 256)")
        ->option_text("BITS")
        ->check(CLI::IsMember({128, 192, 256}));
    command
        .add_option("--block-size", _create.blockSize,
                    "Content is encrypted in pieces of this size (default 4096)")
        ->option_text("BYTES")
        ->check(judgeBlockSize);
    addPassword(command, _create.password);
}

void CommandParser::addMount()
{
    CLI::App &command = *addCommand("mount", "Show an encrypted folder as a disk", help::mount,
                                    [this] { return runMount(_mount); });
    addFolder(command, _mount.folder, "The encrypted folder");
    command.add_option("MOUNTPOINT", _mount.mountPoint, "The empty folder to show it in")
        ->required()
        ->option_text(" ");
    command.add_flag("--foreground", _mount.foreground, "Serve the disk here; ^C unmounts");
    command.add_flag("--read-only", _mount.readOnly, "Nothing on the disk can be changed");
    command.add_flag("--allow-other", _mount.allowOther,
                     "Other users may use the disk, as far as its permissions go");
    command.add_option("-o", _mount.options, "An option of FUSE; may be repeated")
        ->option_text("OPTION")
        ->allow_extra_args(false);
    addPassword(command, _mount.password);
}

void CommandParser::addUnmount()
{
    CLI::App &command = *addCommand("unmount", "Take a disk away", help::unmount,
                                    [this] { return runUnmount(_unmount); });
    command.add_option("MOUNTPOINT", _unmount, "Where the disk is")->required()->option_text(" ");
}

void CommandParser::addPasswd()
{
    CLI::App &command = *addCommand("passwd", "Change a folder's password", help::passwd,
                                    [this] { return runPasswd(_passwd); });
    addFolder(command, _passwd.folder, "The encrypted folder");
    addPassword(command, _passwd.password);
    command
        .add_option("--new-password-file", _passwd.newPassword.file,
                    "Take the new password from the first line of FILE; - is standard input")
        ->option_text("FILE");
}

void CommandParser::addInfo()
{
    CLI::App &command = *addCommand("info", "Tell about an encrypted folder", help::info,
                                    [this] { return runInfo(_info); });
    addFolder(command, _info.folder, "The encrypted folder");
    command.add_flag("--json", _info.json, "For programs");
}

void CommandParser::addTranslation(const std::string &name, const std::string &summary,
                                   const char *help, TranslationOptions &options,
                                   ExitStatus (*run)(const TranslationOptions &))
{
    CLI::App &command = *addCommand(name, summary, help, [&options, run] { return run(options); });
    addFolder(command, options.folder, "The encrypted folder");
    command.add_option("PATH", options.paths, "Paths relative to its root")
        ->required()
        ->option_text("...");
    command.add_flag("--null", options.null, "End each result with a zero byte, not a newline");
    addPassword(command, options.password);
}

} // namespace nimbrel
