#include "platform/PlacesList.h"

#include <QDir>
#include <QString>
#include <QUrl>

#include <algorithm>

namespace nimbrel {

namespace {

std::string nameOf(const std::string &path)
{
    return path.substr(path.rfind('/') + 1);
}

// A line is a URI, and a label behind a blank.
bool namesPlace(std::string_view line, const std::string &path)
{
    return isFileUriOf(line.substr(0, line.find(' ')), path);
}

bool containsPlace(std::string_view text, const std::string &path)
{
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (namesPlace(text.substr(0, end), path))
            return true;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return false;
}

} // namespace

std::string fileUri(const std::string &path)
{
    constexpr const char *kept = "/!$&'()*+,;=:@";
    return "file://" + QUrl::toPercentEncoding(QString::fromStdString(path), kept).toStdString();
}

bool isFileUriOf(std::string_view uri, const std::string &path)
{
    const QUrl url(QString::fromUtf8(uri.data(), static_cast<qsizetype>(uri.size())).trimmed());
    const bool isHere = url.host().isEmpty() || url.host() == QLatin1String("localhost");
    const bool isPathAlone = !url.hasQuery() && !url.hasFragment();
    return url.scheme() == QLatin1String("file") && isHere && isPathAlone &&
           QDir::cleanPath(url.path(QUrl::FullyDecoded)) == QString::fromStdString(path);
}

std::optional<std::string> withPlaceInGtkList(std::string_view text, const Place &place)
{
    if (text.find('\0') != std::string_view::npos)
        return std::nullopt; // no list of ours
    std::string made(text);
    if (containsPlace(text, place.path))
        return made;
    if (!made.empty() && !made.ends_with('\n'))
        made += '\n';
    made += fileUri(place.path);
    if (place.label != nameOf(place.path))
        made += ' ' + place.label;
    return made + '\n';
}

} // namespace nimbrel
