// Where a disk is shown, and with which options.
#include "volume/NBNimbrelVolume.h"

#include "app/Texts.h"
#include "app/Util.h"
#include "fs/MountTable.h"
#include "platform/Preferences.h"
#include "platform/Resources.h"
#include "volume/MountPlace.h"
#include "volume/TextConversion.h"

#include <filesystem>

namespace nimbrel {

QString NBNimbrelVolume::mountPoint() const
{
    return pathIn(_services.mountRoot, mountPointName());
}

QString NBNimbrelVolume::mountPointName() const
{
    if (!_services.preferences.boolValue(preferencesKey::volumePrefix))
        return _label;
    return systemFacts::userName() + u'-' + _label;
}

bool NBNimbrelVolume::isMountPointInUse() const
{
    return mountAt(canonicalMountPoint(mountPoint())).has_value();
}

QStringList NBNimbrelVolume::mountOptions() const
{
    QStringList options{
        QStringLiteral("volname=") + _label,
        QStringLiteral("modules=iconv:volicon"),
        QStringLiteral("from_code=UTF-8"),
        QStringLiteral("to_code=UTF-8-MAC"),
        QStringLiteral("iconpath=") +
            _services.resources.path(QStringLiteral("volume"), QStringLiteral("icns"))
                .value_or(QString()),
        QStringLiteral("native_xattr"),
    };
    if (_local || _spotlight)
        options << QStringLiteral("local");
    if (_allowAll || _spotlight)
        options << QStringLiteral("allow_other");
    return options << QStringLiteral("auto_cache") << QStringLiteral("fssubtype=10");
}

bool NBNimbrelVolume::deleteMountPoint() const
{
    const QString path = mountPoint();
    if (!Util::exists(path)) {
        Util::showAlert(texts::tr("The mount point does not exist."));
        return false;
    }
    if (!Util::directoryExists(path)) {
        Util::showAlert(texts::tr("The mount point is not a directory."));
        return false;
    }
    // Any list, be it empty, counts as content (kept).
    std::error_code error;
    const std::filesystem::directory_iterator list(coreText(path), error);
    if (!error) {
        Util::showAlert(texts::tr("The mount point is not empty."));
        return false;
    }
    if (std::filesystem::remove(coreText(path), error))
        return true;
    Util::showAlert(texts::tr("Could not delete the mount point."));
    return false;
}

} // namespace nimbrel
