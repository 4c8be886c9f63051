// What one row of the volumes table shows.
#pragma once

#include <QList>
#include <QMetaType>
#include <QPalette>
#include <QString>
#include <QTextLayout>

class QFont;

namespace nimbrel {

class NBNimbrelVolume;

// A text with fonts and colours for ranges of it; what no range covers keeps the cell's own.
struct AttributedText
{
    QString string;
    QList<QTextLayout::FormatRange> attributes;
};

namespace volumeCell {

// The name of the picture that shows the state: "volume" or "volume_unmounted".
[[nodiscard]] QString imageName(const NBNimbrelVolume &volume);
// The state in words: "mounted" or "not mounted".
[[nodiscard]] QString state(const NBNimbrelVolume &volume);
// A blank line, the label, the path; the first smaller than `font`, the last smaller and dimmer.
[[nodiscard]] AttributedText text(const NBNimbrelVolume &volume, bool isSelected, const QFont &font,
                                  const QPalette &palette);

} // namespace volumeCell

} // namespace nimbrel

Q_DECLARE_METATYPE(nimbrel::AttributedText)
