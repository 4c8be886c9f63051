#include "cli/Workbench.h"

#include "support/Files.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace files = std::filesystem;

namespace {

void giveTo(const std::string &path, std::optional<uid_t> user)
{
    if (user && ::chown(path.c_str(), *user, *user) != 0)
        throw std::runtime_error("can't give away " + path);
}

std::string describe(const files::path &path)
{
    struct stat found = {};
    if (::lstat(path.c_str(), &found) != 0)
        throw std::runtime_error("can't look at " + path.string());
    std::ostringstream line;
    line << path << ' ' << found.st_mode << ' ' << found.st_mtim.tv_sec << '.'
         << found.st_mtim.tv_nsec;
    if (S_ISREG(found.st_mode))
        line << ' ' << toHex(bytesOf(readFile(path)));
    return line.str() + "\n";
}

} // namespace

Workbench::Workbench(std::optional<uid_t> user) : _user(user), _program(NIMBREL_NIMBRELCTL)
{
    giveTo(_temp.path(), user);
    if (!user)
        return;
    // The build may lie where that user can't go.
    const std::string copy = _temp / "nimbrelctl";
    files::copy_file(_program, copy);
    ::chmod(copy.c_str(), 0755);
    _program = copy;
}

std::string Workbench::makeFolder(std::string_view name) const
{
    std::string path = _temp.makeFolder(name);
    giveTo(path, _user);
    return path;
}

RunOptions Workbench::runOptions(const std::string &input) const
{
    return {.input = input,
            .folder = _temp.path(),
            .environment = {"XDG_STATE_HOME=" + (_temp / "state"), "LC_ALL=C"},
            .user = _user};
}

RunResult Workbench::nimbrelctl(std::vector<std::string> arguments, const std::string &input) const
{
    arguments.insert(arguments.begin(), _program);
    return run(arguments, runOptions(input));
}

std::string Workbench::passwordFile(std::string_view password) const
{
    std::string path = _temp / ("password-" + std::to_string(_made++));
    writeFile(path, std::string(password) + "\nanother line\n");
    giveTo(path, _user);
    return path;
}

std::string Workbench::encryptedFolder(std::string_view password,
                                       std::vector<std::string> arguments) const
{
    std::string path = _temp / ("encrypted-" + std::to_string(_made++));
    arguments.insert(arguments.begin(),
                     {"create", path, "--password-file", passwordFile(password)});
    const RunResult made = nimbrelctl(arguments);
    if (made.status != 0)
        throw std::runtime_error("create failed: " + made.error);
    return path;
}

void expectComplaint(const RunResult &result, int status, std::string_view text)
{
    EXPECT_EQ(result.status, status) << result.error;
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(result.error.starts_with("nimbrelctl: ")) << result.error;
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    EXPECT_TRUE(result.error.ends_with(".\n") || result.error.ends_with("?\n")) << result.error;
    EXPECT_NE(result.error.find(text), std::string::npos) << result.error << "lacks: " << text;
}

std::string snapshot(const std::string &folder)
{
    std::set<files::path> paths{folder};
    for (const files::directory_entry &entry : files::recursive_directory_iterator(folder))
        paths.insert(entry.path());
    std::string text;
    for (const files::path &path : paths)
        text += describe(path);
    return text;
}

std::string unpackedFolder(const Workbench &bench, const std::string &name)
{
    const std::string place = bench.makeFolder("unpacked");
    const RunResult unpacked = run({"tar", "-xJf", dataFile("folders.tar.xz"), "-C", place,
                                    "--no-same-owner", "--no-same-permissions", name});
    if (unpacked.status != 0)
        throw std::runtime_error("tar failed: " + unpacked.error);
    return place + "/" + name;
}

} // namespace nimbrel::test
