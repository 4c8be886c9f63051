#include "volume/DesktopAlias.h"

#include "app/TextFormat.h"
#include "app/Util.h"
#include "volume/TextConversion.h"

#include <filesystem>

namespace nimbrel {

namespace {

namespace fs = std::filesystem;

bool isLinkTo(const QString &path, const QString &target)
{
    std::error_code error;
    return fs::read_symlink(coreText(path), error) == coreText(target) && !error;
}

QString numbered(const QString &path, int number)
{
    return number == 0 ? path
                       : formatted(QStringLiteral("%@ (%ld)"), {path, QString::number(number)});
}

} // namespace

QString freeAliasPath(const QString &desktop, const QString &label)
{
    const QString path = pathIn(desktop, label);
    int number = 0;
    while (Util::exists(numbered(path, number)))
        ++number;
    return numbered(path, number);
}

QString makeAlias(const QString &desktop, const QString &label, const QString &target)
{
    const QString first = pathIn(desktop, label);
    // Our own link is told by its text: following it would ask the disk.
    for (int number = 0;; ++number) {
        if (isLinkTo(numbered(first, number), target))
            return numbered(first, number);
        if (!Util::exists(numbered(first, number)))
            break;
    }
    QString alias = freeAliasPath(desktop, label);
    std::error_code ignored; // a disk without a link is still a disk
    fs::create_symlink(coreText(target), coreText(alias), ignored);
    return alias;
}

void removeAlias(const QString &alias, const QString &target)
{
    std::error_code ignored;
    if (!alias.isEmpty() && isLinkTo(alias, target))
        fs::remove(coreText(alias), ignored);
}

} // namespace nimbrel
