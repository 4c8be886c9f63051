#include "app/Appcast.h"

#include "app/AppcastItem.h"
#include "app/NumericComparison.h"
#include "app/TextFormat.h"
#include "app/Texts.h"

namespace nimbrel {

namespace {

constexpr int maximumItems = 1000; // a feed with a version a week fills it in 19 years

// True when the next child of the current element is found, and it is `name` in no namespace;
// others are skipped.
bool readNext(QXmlStreamReader &reader, QLatin1String name)
{
    while (reader.readNextStartElement()) {
        if (reader.name() == name && reader.namespaceUri().isEmpty())
            return true;
        reader.skipCurrentElement();
    }
    return false;
}

// More than that, in any number of channels, is passed over.
void readChannel(QXmlStreamReader &reader, Appcast &appcast)
{
    while (readNext(reader, QLatin1String("item"))) {
        UpdateOffer offer = AppcastItem(reader).read();
        if (!offer.version.isEmpty() && appcast.items.size() < maximumItems)
            appcast.items.append(std::move(offer));
    }
}

void readDocument(QXmlStreamReader &reader, Appcast &appcast)
{
    if (!reader.readNextStartElement())
        return;
    if (reader.name() != QLatin1String("rss") || !reader.namespaceUri().isEmpty())
        return reader.raiseError(texts::tr("It is no RSS."));
    bool hasChannel = false;
    while (readNext(reader, QLatin1String("channel"))) {
        hasChannel = true;
        readChannel(reader, appcast);
    }
    if (!hasChannel && !reader.hasError())
        reader.raiseError(texts::tr("It has no channel."));
}

// A text that goes on behind its end is damaged, too.
void readToEnd(QXmlStreamReader &reader)
{
    while (!reader.atEnd())
        reader.readNext();
}

} // namespace

std::optional<UpdateOffer> Appcast::newest() const
{
    std::optional<UpdateOffer> newest;
    for (const UpdateOffer &item : items)
        if (!newest || std::is_lt(compareNumerically(newest->version, item.version)))
            newest = item;
    return newest;
}

std::variant<Appcast, QString> readAppcast(const QByteArray &text)
{
    QXmlStreamReader reader(text);
    Appcast appcast;
    readDocument(reader, appcast);
    readToEnd(reader);
    if (reader.hasError())
        return formatted(texts::tr("Line %ld: %@"),
                         {QString::number(reader.lineNumber()), reader.errorString()});
    return appcast;
}

} // namespace nimbrel
