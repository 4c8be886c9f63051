#include "fs/ConfigurationProtection.h"

#include "config/ConfigurationLookup.h"

#include <array>
#include <strings.h>
#include <sys/stat.h>

namespace nimbrel {

namespace {

constexpr std::array<std::string_view, 2> ownNames = {configurationFileName,
                                                      oldConfigurationFileName};

bool isSameItem(const struct stat &one, const struct stat &other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

NBErrnoOr<struct stat> attributesOf(NBNimbrelFS &delegate, std::string_view ownName)
{
    return delegate.attributesOfItemAtPath("/" + std::string(ownName));
}

bool isOtherSpelling(std::string_view name, std::string_view ownName)
{
    return name.size() == ownName.size() &&
           ::strncasecmp(name.data(), ownName.data(), name.size()) == 0;
}

} // namespace

bool isConfiguration(NBNimbrelFS &delegate, const std::string &path)
{
    if (delegate.settings().areFilenamesEncrypted)
        return false;
    const std::size_t begin = path.find_first_not_of('/');
    if (begin == std::string::npos)
        return false;
    const std::string_view name = std::string_view(path).substr(begin);
    for (const std::string_view ownName : ownNames) {
        if (name == ownName)
            return true;
        if (!isOtherSpelling(name, ownName))
            continue;
        const NBErrnoOr<struct stat> item = delegate.attributesOfItemAtPath(path);
        const NBErrnoOr<struct stat> own = attributesOf(delegate, ownName);
        if (item && own && isSameItem(*item, *own))
            return true;
    }
    return false;
}

bool isConfiguration(NBNimbrelFS &delegate, const NBFileHandle &file)
{
    if (delegate.settings().areFilenamesEncrypted)
        return false;
    struct stat item = {};
    if (::fstat(file.descriptor.get(), &item) != 0)
        return false;
    for (const std::string_view ownName : ownNames)
        if (const NBErrnoOr<struct stat> own = attributesOf(delegate, ownName);
            own && isSameItem(item, *own))
            return true;
    return false;
}

} // namespace nimbrel
