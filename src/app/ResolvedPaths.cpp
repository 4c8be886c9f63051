#include "app/ResolvedPaths.h"

#include <QFile>
#include <QProcess>

namespace nimbrel {

namespace {

constexpr int patience = 10'000; // ms

// One a path, in their order; the paths themselves where that fails.
QStringList resolved(const QStringList &paths)
{
    QProcess program;
    program.setStandardInputFile(QProcess::nullDevice());
    program.setStandardErrorFile(QProcess::nullDevice());
    const QStringList options{QStringLiteral("-m"), QStringLiteral("-z"), QStringLiteral("--")};
    program.start(QStringLiteral("realpath"), options + paths);
    if (!program.waitForFinished(patience)) {
        program.kill();
        return paths;
    }
    QStringList found;
    for (const QByteArray &path : program.readAllStandardOutput().split('\0'))
        found.append(QFile::decodeName(path));
    found.removeLast(); // behind the last zero
    return found.size() == paths.size() ? found : paths;
}

QString withoutSlashes(QString path)
{
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

// The item's name, where the item itself mustn't be followed; "." and ".." are no names.
QString nameOf(const QString &path)
{
    const QString name = path.sliced(path.lastIndexOf(u'/') + 1);
    return name == QLatin1String(".") || name == QLatin1String("..") ? QString() : name;
}

} // namespace

ResolvedPaths resolvePaths(const QString &item, const QStringList &folders)
{
    const QString path = withoutSlashes(item);
    const QString name = nameOf(path);
    const QString parent = name.isEmpty() ? path : path.chopped(name.size());
    const QStringList found = resolved(QStringList{parent} + folders);
    ResolvedPaths paths{.item = withoutSlashes(found.first()), .folders = {}};
    if (!name.isEmpty())
        paths.item += paths.item.endsWith(u'/') ? name : u'/' + name;
    for (qsizetype at = 0; at < folders.size(); ++at)
        paths.folders.insert(folders[at], found[at + 1]);
    return paths;
}

} // namespace nimbrel
