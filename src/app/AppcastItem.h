// Reads one item of an update feed.
#pragma once

#include "windows/UpdateOffer.h"

#include <QXmlStreamReader>

namespace nimbrel {

// The reader stands at the item's start and then at its end, or has an error.
class AppcastItem final
{
public:
    explicit AppcastItem(QXmlStreamReader &reader) : _reader(reader) {}

    // Its version is empty when the item names none that could be shown.
    [[nodiscard]] UpdateOffer read();

private:
    void readChild(UpdateOffer &offer);
    void readEnclosure();
    [[nodiscard]] QString readText(qsizetype maximumSize);

    QXmlStreamReader &_reader;
    QString _version;
    QString _shortVersion;
    QString _link;
    QString _enclosure;
};

} // namespace nimbrel
