#include "config/ConfigurationLookup.h"

#include <filesystem>
#include <system_error>

namespace nimbrel {

namespace {

// Something other than a folder, links followed.
bool fileExists(const std::filesystem::path &path)
{
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

} // namespace

std::optional<std::string> findConfiguration(const std::string &folder)
{
    for (const std::string_view name : {configurationFileName, oldConfigurationFileName}) {
        const auto path = std::filesystem::path(folder) / name;
        if (fileExists(path))
            return path.string();
    }
    return std::nullopt;
}

} // namespace nimbrel
