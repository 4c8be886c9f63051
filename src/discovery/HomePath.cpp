#include "discovery/HomePath.h"

#include "platform/SystemFacts.h"

#include <QFile>

#include <array>
#include <pwd.h>

namespace nimbrel {

namespace {

// Empty when there is no such user.
QString homeFolderOf(const QString &user)
{
    std::array<char, 16384> buffer{};
    struct passwd account = {};
    struct passwd *found = nullptr;
    const QByteArray name = QFile::encodeName(user);
    ::getpwnam_r(name.constData(), &account, buffer.data(), buffer.size(), &found);
    return found == nullptr ? QString() : QFile::decodeName(found->pw_dir);
}

} // namespace

QString expandedTilde(const QString &path)
{
    if (!path.startsWith(u'~'))
        return path;
    const qsizetype slash = path.indexOf(u'/');
    const QString user = path.sliced(1, (slash < 0 ? path.size() : slash) - 1);
    const QString home = user.isEmpty() ? systemFacts::homeFolder() : homeFolderOf(user);
    if (home.isEmpty())
        return path;
    return slash < 0 ? home : home + path.sliced(slash);
}

QString inHomeFolder(QLatin1String name)
{
    return systemFacts::homeFolder() + u'/' + name;
}

} // namespace nimbrel
