#include "support/TempFolder.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <sys/stat.h>

namespace nimbrel::test {

TempFolder::TempFolder()
{
    std::string pattern = std::filesystem::temp_directory_path() / "nimbrel-test-XXXXXX";
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
