#include "support/TempFolder.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

namespace fs = std::filesystem;

// Whether every user of the machine may pass through all of `folder`'s path.
bool isOpenToAll(const fs::path &folder)
{
    for (fs::path part = folder; !part.empty(); part = part.parent_path()) {
        struct stat attributes = {};
        if (::stat(part.c_str(), &attributes) != 0 || (attributes.st_mode & S_IXOTH) == 0)
            return false;
        if (part == part.root_path())
            return true;
    }
    return false;
}

// A root's temporary folder may be closed to others; tests as an ordinary user need one that isn't.
fs::path baseFolder()
{
    const fs::path own = fs::canonical(fs::temp_directory_path());
    if (::geteuid() != 0 || isOpenToAll(own))
        return own;
    for (const char *common : {"/tmp", "/var/tmp"})
        if (isOpenToAll(common))
            return common;
    return own;
}

} // namespace

TempFolder::TempFolder()
{
    std::string pattern = baseFolder() / "nimbrel-test-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr || ::chmod(pattern.c_str(), 0755) != 0)
        throw std::runtime_error("no temporary folder: " + pattern);
    _path = std::filesystem::canonical(pattern);
}

TempFolder::~TempFolder()
{
    std::error_code error;
    std::filesystem::remove_all(_path, error);
}

std::string TempFolder::operator/(std::string_view name) const
{
    return _path + "/" + std::string(name);
}

std::string TempFolder::makeFolder(std::string_view name) const
{
    const std::string path = *this / name;
    std::filesystem::create_directories(path);
    ::chmod(path.c_str(), 0755);
    return path;
}

} // namespace nimbrel::test
