#include "volume/NewFolder.h"

#include "config/ConfigurationLookup.h"
#include "fs/TreeRemoval.h"

#include <filesystem>
#include <utility>

namespace nimbrel {

namespace fs = std::filesystem;

NewFolder::NewFolder(std::string path) : _path(std::move(path)) {}

bool NewFolder::holdsConfiguration() const
{
    return findConfiguration(_path).has_value();
}

bool NewFolder::make()
{
    if (_path.empty())
        return false;
    std::error_code error;
    fs::create_directories(_path, error);
    if (error || !fs::is_directory(_path, error))
        return false;
    _wasEmpty = fs::is_empty(_path, error) && !error;
    return true;
}

void NewFolder::takeBack()
{
    if (_wasEmpty)
        (void)removeTree(_path.c_str());
}

} // namespace nimbrel
