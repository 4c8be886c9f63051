#include "platform/DesktopBookmarks.h"

#include "config/AtomicFile.h"
#include "config/BoundedFile.h"
#include "platform/PlacesList.h"
#include "platform/SystemFacts.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <mutex>

namespace nimbrel {

namespace {

using AddToList = std::optional<std::string> (*)(std::string_view text, const Place &place);

// A label with a line feed would be two lines, and a control character no XML.
QString onOneLine(QString label)
{
    for (QChar &character : label)
        if (character.category() == QChar::Other_Control || character.unicode() >= 0xFFFE)
            character = u' ';
    return label.trimmed();
}

Place placeOf(const QString &folder, const QString &label)
{
    const QString path = QDir::cleanPath(folder);
    const QString shown = onOneLine(label);
    const QString name = onOneLine(path.sliced(path.lastIndexOf(QLatin1Char('/')) + 1));
    return {path.toStdString(), (shown.isEmpty() ? name : shown).toStdString()};
}

// A missing list is an empty text where `isMade`, and no list at all where it isn't.
bool addTo(const std::string &path, bool isMade, AddToList add, const Place &place)
{
    constexpr std::size_t maximumSize = std::size_t{1} << 22U;
    const auto read = readBoundedFile(path, maximumSize);
    std::string text;
    if (const auto *error = std::get_if<NBPreferencesError>(&read)) {
        if (error->domain != posixErrorDomain || error->code != ENOENT)
            return false;
        if (!isMade)
            return true;
    } else {
        text = std::get<std::string>(read);
    }
    const std::optional<std::string> longer = add(text, place);
    return longer && (*longer == text || !replaceFile(path, *longer));
}

bool addToGtkList(const Place &place)
{
    const QString folder = systemFacts::configFolder() + QLatin1String("/gtk-3.0");
    const QString path = folder + QLatin1String("/bookmarks");
    return QDir().mkpath(folder) &&
           addTo(QFile::encodeName(path).toStdString(), true, withPlaceInGtkList, place);
}

bool addToXbel(const Place &place)
{
    const QString path = systemFacts::dataFolder() + QLatin1String("/user-places.xbel");
    return addTo(QFile::encodeName(path).toStdString(), false, withPlaceInXbel, place);
}

} // namespace

bool DesktopBookmarks::add(const QString &folder, const QString &label)
{
    static std::mutex mutex; // two disks may come up at once
    const std::scoped_lock lock(mutex);
    const Place place = placeOf(folder, label);
    const bool isInGtkList = addToGtkList(place);
    const bool isInXbel = addToXbel(place);
    return isInGtkList && isInXbel;
}

} // namespace nimbrel
