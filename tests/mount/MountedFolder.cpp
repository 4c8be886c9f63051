#include "mount/MountedFolder.h"

#include "config/UniqueFd.h"
#include "mount/Nimbrelctl.h"
#include "mount/OrdinaryDisk.h"
#include "support/MountInfo.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/stat.h>

namespace nimbrel::test {

namespace {

constexpr std::chrono::seconds mountLimit{60};
constexpr std::chrono::seconds endLimit{120}; // a leak check may take its time
constexpr std::chrono::seconds busyLimit{30};

[[noreturn]] void fail(const std::string &what, const std::string &said)
{
    throw std::runtime_error(what + ": " + said);
}

bool endedBySignalOfATest(int status)
{
    return status == 128 + SIGKILL || status == 128 + SIGTERM;
}

} // namespace

std::string whyNoFuse()
{
    return onOrdinaryDisk() ? std::string() : whyNoMounts(); // there nothing will be mounted
}

MountedFolder::MountedFolder(MountedFolderOptions options)
    : _options(std::move(options)), _nimbrelctl(_temp, _options.user)
{
    const std::string backing = _options.backing.empty() ? _temp.path() : _options.backing;
    _encrypted = _options.existingFolder.empty() ? backing + "/encrypted" : _options.existingFolder;
    if (_options.existingFolder.empty()) {
        std::filesystem::create_directory(_encrypted);
        ::chmod(_encrypted.c_str(), 0755);
        _nimbrelctl.give(_encrypted);
    }
    if (onOrdinaryDisk()) {
        _plain = _encrypted;
        return;
    }
    _plain = _temp.makeFolder("plain");
    _nimbrelctl.give(_plain);
    _passwordFile = _nimbrelctl.passwordFile("password", _options.password);
    if (_options.existingFolder.empty())
        create();
    mount();
}

MountedFolder::~MountedFolder()
{
    if (onOrdinaryDisk())
        return;
    try {
        leave();
    } catch (const std::exception &error) {
        ADD_FAILURE() << error.what();
    }
    detachAll(_plain); // else the folder's removal would reach into the disk
}

void MountedFolder::create()
{
    std::vector<std::string> words{"create",          _encrypted,
                                   "--key-size",      std::to_string(_options.keySize),
                                   "--block-size",    std::to_string(_options.blockSize),
                                   "--password-file", _passwordFile};
    if (_options.plainNames)
        words.emplace_back("--plain-names");
    const RunResult created = _nimbrelctl(words);
    if (created.status != 0)
        fail("nimbrelctl create, status " + std::to_string(created.status), created.error);
}

void MountedFolder::mount()
{
    if (onOrdinaryDisk())
        return;
    std::vector<std::string> words{"mount",        _encrypted,        _plain,
                                   "--foreground", "--password-file", _passwordFile};
    words.insert(words.end(), _options.mountArguments.begin(), _options.mountArguments.end());
    _process = std::make_unique<RunningProcess>(_nimbrelctl.command(words), _nimbrelctl.options());
    std::optional<int> ended;
    const bool decided = eventually(
        [&] {
            ended = _process->wait(std::chrono::seconds(0));
            return ended || mountedAt(_plain) == "fuse.nimbrel";
        },
        mountLimit);
    if (decided && !ended)
        return;
    const std::string log = _process->log();
    _process.reset();
    fail(ended ? "nimbrelctl mount, status " + std::to_string(*ended)
               : "nimbrelctl mount: nothing mounted in a minute",
         log);
}

bool MountedFolder::unmount()
{
    if (onOrdinaryDisk())
        return true;
    const RunResult result = _nimbrelctl({"unmount", _plain});
    if (result.status != 0 || mountedAt(_plain))
        return false;
    awaitEnd();
    return true;
}

void MountedFolder::awaitEnd()
{
    if (!_process)
        return;
    const std::optional<int> status = _process->wait(endLimit);
    const std::string log = _process->log();
    _process.reset();
    if (!status)
        fail("nimbrelctl mount goes on after its disk is gone", log);
    if (*status != 0 && !endedBySignalOfATest(*status))
        fail("nimbrelctl mount ended with status " + std::to_string(*status), log);
}

void MountedFolder::remount()
{
    // Something else on the machine may look into the disk for a moment.
    if (!eventually([&] { return unmount(); }, busyLimit))
        fail("nimbrelctl unmount is refused", _plain);
    mount();
}

void MountedFolder::leave()
{
    const bool served = _process && !_process->wait(std::chrono::seconds(0));
    if (served && !eventually([&] { return unmount(); }, busyLimit)) {
        _process.reset(); // it would serve its open files on
        fail("nimbrelctl unmount is refused at the end", _plain);
    }
    if (mountedAt(_plain) && !unmount())
        detachAll(_plain);
    awaitEnd();
}

void MountedFolder::kill()
{
    process().signal(SIGKILL);
    if (!process().wait(endLimit))
        fail("nimbrelctl mount", "can't be killed");
}

pid_t MountedFolder::daemon() const
{
    if (!_process)
        throw std::logic_error("no program serves " + _plain);
    return _process->id();
}

} // namespace nimbrel::test
