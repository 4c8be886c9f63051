#pragma once

#include "config/UniqueFd.h"

#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/types.h>

namespace nimbrel::test {

// A file held open. Every operation throws std::runtime_error, with the path, when it fails.
class OpenFile final
{
public:
    explicit OpenFile(const std::string &path, int flags = O_RDONLY, mode_t mode = 0644);

    [[nodiscard]] int id() const noexcept { return _file.get(); }

    void writeAt(std::string_view data, off_t offset) const; // all of it
    void write(std::string_view data) const;                 // in one call, at the file's position
    [[nodiscard]] std::string readAt(std::size_t size, off_t offset) const; // less at the end
    [[nodiscard]] std::string all() const;
    void truncate(off_t size) const;
    void sync() const;
    [[nodiscard]] struct stat status() const;
    [[nodiscard]] off_t size() const { return status().st_size; }
    void close(); // tells what closing tells, unlike the end of its life

private:
    std::string _path;
    UniqueFd _file;
};

// lstat(2)
[[nodiscard]] struct stat statusOf(const std::string &path);
[[nodiscard]] bool exists(const std::string &path); // also a link that leads nowhere

} // namespace nimbrel::test
