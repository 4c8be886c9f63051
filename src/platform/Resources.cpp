#include "platform/Resources.h"

#include "platform/SystemFacts.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <utility>

namespace nimbrel {

namespace {

QString defaultFolder()
{
    QString folder = QFile::decodeName(qgetenv("NIMBREL_RESOURCES"));
    if (!folder.isEmpty())
        return folder;
    const QString programFolder = QFileInfo(systemFacts::programPath()).path();
    return QFileInfo(programFolder).path() + QLatin1String("/share/nimbrel");
}

// "de_DE" gives "de_DE" and "de".
QStringList fromSpecificToGeneral(QString language)
{
    language.replace(QLatin1Char('-'), QLatin1Char('_'));
    QStringList made{language};
    for (qsizetype end = 0; (end = language.lastIndexOf(QLatin1Char('_'))) > 0;) {
        language.truncate(end);
        made += language;
    }
    return made;
}

QStringList folderNames(const QStringList &languages)
{
    QStringList names;
    for (const QString &language : languages)
        names += fromSpecificToGeneral(language);
    names.removeDuplicates();
    return names;
}

std::optional<QString> existing(const QString &path)
{
    return QFileInfo::exists(path) ? std::optional(path) : std::nullopt;
}

} // namespace

Resources::Resources() : Resources(defaultFolder(), QLocale::system().uiLanguages()) {}

Resources::Resources(QString folder, const QStringList &languages)
    : _folder(std::move(folder)), _languages(folderNames(languages))
{
}

std::optional<QString> Resources::path(const QString &name, const QString &type) const
{
    for (const QString &language : _languages)
        if (auto found = path(name, type, language))
            return found;
    return existing(_folder + QLatin1Char('/') + name + QLatin1Char('.') + type);
}

std::optional<QString> Resources::path(const QString &name, const QString &type,
                                       const QString &localization) const
{
    return existing(_folder + QLatin1Char('/') + localization + QLatin1Char('/') + name +
                    QLatin1Char('.') + type);
}

} // namespace nimbrel
