#include "volume/PathExtension.h"

#include "app/Util.h"
#include "volume/TextConversion.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>

namespace nimbrel {

namespace {

QString withoutFinalSlashes(QString path)
{
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

// Where the extension's dot stands; -1 for none.
qsizetype dotOf(const QString &path)
{
    const qsizetype name = path.lastIndexOf(u'/') + 1;
    const qsizetype dot = path.lastIndexOf(u'.');
    return dot > name && dot + 1 < path.size() ? dot : -1;
}

// Never onto another folder, be it empty. False with nothing changed.
bool rename(const QString &from, const QString &to)
{
    const std::string source = coreText(from);
    const std::string target = coreText(to);
    if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    // Some network filesystems have no such operation.
    return errno == EINVAL && !Util::exists(to) && std::rename(source.c_str(), target.c_str()) == 0;
}

} // namespace

QString pathExtension(const QString &path)
{
    const QString plain = withoutFinalSlashes(path);
    const qsizetype dot = dotOf(plain);
    return dot < 0 ? QString() : plain.sliced(dot + 1);
}

QString withPathExtension(const QString &path, const QString &extension)
{
    const QString plain = withoutFinalSlashes(path);
    const qsizetype dot = dotOf(plain);
    return (dot < 0 ? plain : plain.first(dot)) + u'.' + extension;
}

QString migratedPath(const QString &path)
{
    if (pathExtension(path) != oldFolderExtension)
        return path;
    QString migrated = withPathExtension(path, folderExtension);
    if (Util::directoryExists(path) && !rename(path, migrated))
        return path;
    return migrated;
}

} // namespace nimbrel
