#include "fs/Fusermount.h"

#include "config/UniqueFd.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace nimbrel {

namespace {

constexpr std::string_view program = "fusermount3";

// How the child starts: default signals, nothing open but an empty input and one output.
class SpawnSettings final
{
public:
    explicit SpawnSettings(int output)
    {
        ::posix_spawn_file_actions_init(&_files);
        ::posix_spawn_file_actions_adddup2(&_files, output, STDERR_FILENO);
        ::posix_spawn_file_actions_addopen(&_files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_addopen(&_files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        ::posix_spawn_file_actions_addclosefrom_np(&_files, STDERR_FILENO + 1);
        sigset_t every;
        sigset_t none;
        sigfillset(&every);
        sigemptyset(&none);
        ::posix_spawnattr_init(&_attributes);
        ::posix_spawnattr_setsigdefault(&_attributes, &every);
        ::posix_spawnattr_setsigmask(&_attributes, &none);
        ::posix_spawnattr_setflags(&_attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnSettings()
    {
        ::posix_spawnattr_destroy(&_attributes);
        ::posix_spawn_file_actions_destroy(&_files);
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;

    [[nodiscard]] const posix_spawn_file_actions_t *files() const noexcept { return &_files; }
    [[nodiscard]] const posix_spawnattr_t *attributes() const noexcept { return &_attributes; }

private:
    posix_spawn_file_actions_t _files{};
    posix_spawnattr_t _attributes{};
};

std::string readAll(int descriptor)
{
    std::string text;
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t got = ::read(descriptor, buffer.data(), buffer.size());
        if (got > 0)
            text.append(buffer.data(), static_cast<std::size_t>(got));
        else if (got == 0 || errno != EINTR)
            return text;
    }
}

std::vector<char *> pointersTo(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

std::optional<std::string> findFusermount()
{
    const char *path = std::getenv("PATH");
    const std::string folders = std::string("/usr/bin:/bin:") + (path != nullptr ? path : "");
    for (std::size_t begin = 0; begin < folders.size();) {
        const std::size_t end = std::min(folders.find(':', begin), folders.size());
        const std::string candidate =
            folders.substr(begin, end - begin).append("/").append(program);
        if (candidate.front() == '/' && ::access(candidate.c_str(), X_OK) == 0)
            return candidate;
        begin = end + 1;
    }
    return std::nullopt;
}

NBErrnoOr<std::string> runFusermount(const std::vector<std::string> &arguments)
{
    const std::optional<std::string> path = findFusermount();
    if (!path)
        return NBErrno{ENOSYS};
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return NBErrno::last();
    const UniqueFd read(ends[0]);
    UniqueFd write(ends[1]);

    std::vector<std::string> words = arguments;
    words.insert(words.begin(), std::string(program));
    // Its messages are read here, so they must be English; nothing else of ours is its business.
    std::vector<std::string> environment = {"PATH=/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL=C"};
    const SpawnSettings settings(write.get());
    pid_t child = -1;
    const int code = ::posix_spawn(&child, path->c_str(), settings.files(), settings.attributes(),
                                   pointersTo(words).data(), pointersTo(environment).data());
    if (code != 0)
        return NBErrno{code};
    write.reset();
    std::string said = readAll(read.get());
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    return said;
}

} // namespace nimbrel
