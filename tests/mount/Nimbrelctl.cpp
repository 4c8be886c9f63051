#include "mount/Nimbrelctl.h"

#include "support/Files.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

void need(int result, const std::string &what)
{
    if (result != 0)
        throw std::runtime_error(what + ": " + std::strerror(errno));
}

} // namespace

Nimbrelctl::Nimbrelctl(const TempFolder &temp, std::optional<uid_t> user)
    : _temp(temp), _user(user), _program(NIMBREL_NIMBRELCTL), _home(temp.makeFolder("home"))
{
    give(_home);
    if (!_user)
        return;
    _program = _temp / "nimbrelctl";
    std::filesystem::copy_file(NIMBREL_NIMBRELCTL, _program);
    need(::chmod(_program.c_str(), 0755), _program);
}

std::vector<std::string> Nimbrelctl::command(const std::vector<std::string> &words) const
{
    std::vector<std::string> command{_program};
    command.insert(command.end(), words.begin(), words.end());
    return command;
}

RunOptions Nimbrelctl::options() const
{
    RunOptions options;
    options.environment = {"HOME=" + _home, "XDG_STATE_HOME=" + _home + "/state",
                           "XDG_CONFIG_HOME=" + _home + "/config",
                           "XDG_CACHE_HOME=" + _home + "/cache"};
    options.user = _user;
    return options;
}

RunResult Nimbrelctl::operator()(const std::vector<std::string> &words) const
{
    return run(command(words), options());
}

std::string Nimbrelctl::passwordFile(const std::string &name, const std::string &password) const
{
    const std::string path = _temp / name;
    writeFile(path, password + "\n");
    need(::chmod(path.c_str(), 0600), path);
    give(path);
    return path;
}

void Nimbrelctl::give(const std::string &path) const
{
    if (_user)
        need(::lchown(path.c_str(), *_user, static_cast<gid_t>(*_user)), path);
}

} // namespace nimbrel::test
