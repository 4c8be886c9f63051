#include "app/AppcastItem.h"

#include "app/FeedDate.h"
#include "app/Texts.h"

namespace nimbrel {

namespace {

constexpr qsizetype maximumLine = 500;                    // titles, addresses, dates
constexpr qsizetype maximumVersion = 60;                  // a window shows it whole
constexpr qsizetype maximumNotes = qsizetype{256} * 1024; // characters
constexpr int maximumDepth = 100;                         // of what notes hold as elements

bool isWebPage(const QUrl &url)
{
    const bool isWeb =
        url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    return isWeb && url.isValid() && !url.host().isEmpty();
}

QUrl pageOf(const QString &link, const QString &enclosure)
{
    for (const QString &address : {link, enclosure})
        if (QUrl url(address.trimmed(), QUrl::StrictMode); isWebPage(url))
            return url;
    return {};
}

QString versionOf(const QString &shortVersion, const QString &version)
{
    const QString found = shortVersion.isEmpty() ? version : shortVersion;
    for (const QChar character : found)
        if (!character.isPrint())
            return {};
    return found.size() > maximumVersion ? QString() : found;
}

void setWhereEmpty(QString &text, const QString &value)
{
    if (text.isEmpty())
        text = value.simplified();
}

} // namespace

UpdateOffer AppcastItem::read()
{
    UpdateOffer offer;
    while (_reader.readNextStartElement())
        readChild(offer);
    offer.version = versionOf(_shortVersion, _version);
    offer.page = pageOf(_link, _enclosure);
    return offer;
}

// The feed's own elements stand in no namespace; others, of the same names, may be anything.
void AppcastItem::readChild(UpdateOffer &offer)
{
    const QString name = _reader.name().toString();
    const bool isOwn = _reader.namespaceUri().isEmpty();
    if (name == QLatin1String("shortVersionString"))
        setWhereEmpty(_shortVersion, readText(maximumLine));
    else if (name == QLatin1String("version"))
        setWhereEmpty(_version, readText(maximumLine));
    else if (isOwn && name == QLatin1String("enclosure"))
        readEnclosure();
    else if (isOwn && name == QLatin1String("link"))
        setWhereEmpty(_link, readText(maximumLine));
    else if (isOwn && name == QLatin1String("title"))
        offer.title = readText(maximumLine).simplified();
    else if (isOwn && name == QLatin1String("description"))
        offer.notes = readText(maximumNotes).trimmed();
    else if (isOwn && name == QLatin1String("pubDate"))
        offer.published = feedDate(readText(maximumLine));
    else
        _reader.skipCurrentElement();
}

void AppcastItem::readEnclosure()
{
    for (const QXmlStreamAttribute &attribute : _reader.attributes())
        if (attribute.name() == QLatin1String("shortVersionString"))
            setWhereEmpty(_shortVersion, attribute.value().toString());
        else if (attribute.name() == QLatin1String("version"))
            setWhereEmpty(_version, attribute.value().toString());
        else if (attribute.qualifiedName() == QLatin1String("url"))
            setWhereEmpty(_enclosure, attribute.value().toString());
    _reader.skipCurrentElement();
}

// The text of the element and of all in it, cut at the size. Qt's own operation for that goes down
// into itself, once an element: a deep nesting would exhaust the stack.
QString AppcastItem::readText(qsizetype maximumSize)
{
    QString text;
    for (int depth = 1; depth > 0 && !_reader.atEnd();) {
        _reader.readNext();
        if (_reader.isStartElement() && ++depth > maximumDepth)
            _reader.raiseError(texts::tr("Too many elements lie in one another."));
        else if (_reader.isEndElement())
            --depth;
        else if (_reader.isCharacters() && text.size() < maximumSize)
            text += _reader.text().left(maximumSize - text.size());
    }
    return text;
}

} // namespace nimbrel
