#include "windows/VolumeCell.h"

#include "app/Texts.h"
#include "volume/NBNimbrelVolume.h"

namespace nimbrel::volumeCell {

namespace {

// Of the cell's own font.
constexpr double spacerSize = 0.5;
constexpr double pathSize = 0.85;

QTextLayout::FormatRange range(qsizetype start, qsizetype length)
{
    QTextLayout::FormatRange made;
    made.start = static_cast<int>(start);
    made.length = static_cast<int>(length);
    return made;
}

QTextLayout::FormatRange sized(QTextLayout::FormatRange part, QFont font, double size)
{
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * size);
    else
        font.setPixelSize(qRound(font.pixelSize() * size));
    part.format.setFont(font);
    return part;
}

QTextLayout::FormatRange coloured(QTextLayout::FormatRange part, const QColor &color)
{
    part.format.setForeground(color);
    return part;
}

} // namespace

QString imageName(const NBNimbrelVolume &volume)
{
    return volume.isMounted() ? QStringLiteral("volume") : QStringLiteral("volume_unmounted");
}

QString state(const NBNimbrelVolume &volume)
{
    return volume.isMounted() ? texts::tr("mounted") : texts::tr("not mounted");
}

AttributedText text(const NBNimbrelVolume &volume, bool isSelected, const QFont &font,
                    const QPalette &palette)
{
    AttributedText text{QStringLiteral(" \n") + volume.label() + u'\n' + volume.path(), {}};
    const auto path = range(volume.label().size() + 3, volume.path().size());
    text.attributes += sized(range(0, 2), font, spacerSize);
    text.attributes += sized(path, font, pathSize);
    if (isSelected)
        text.attributes +=
            coloured(range(0, text.string.size()), palette.color(QPalette::HighlightedText));
    else
        text.attributes += coloured(path, palette.color(QPalette::PlaceholderText));
    return text;
}

} // namespace nimbrel::volumeCell
