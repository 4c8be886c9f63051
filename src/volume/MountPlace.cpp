#include "volume/MountPlace.h"

#include "volume/TextConversion.h"

#include <filesystem>

namespace nimbrel {

std::string canonicalMountPoint(const QString &mountPoint)
{
    const std::filesystem::path path(coreText(mountPoint));
    std::error_code error;
    const std::filesystem::path parent =
        std::filesystem::weakly_canonical(path.parent_path(), error);
    return error ? path.string() : (parent / path.filename()).string();
}

} // namespace nimbrel
