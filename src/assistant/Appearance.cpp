#include "assistant/Appearance.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <QStyle>

namespace nimbrel::appearance {

namespace {

constexpr int patience = 500; // ms
constexpr uint prefersDark = 1;

struct Colors
{
    QColor window;
    QColor base; // fields and boxes: apart from the window without a frame
    QColor side; // panels beside the content
    QColor button;
    QColor text;
    QColor paleText;
    QColor disabledText;
    QColor line;
    QColor accent;
    QColor link;
};

const Colors lightColors{.window = QColor(250, 250, 250),
                         .base = Qt::white,
                         .side = QColor(241, 242, 244),
                         .button = QColor(240, 240, 240),
                         .text = QColor(32, 32, 32),
                         .paleText = QColor(105, 105, 105),
                         .disabledText = QColor(160, 160, 160),
                         .line = QColor(214, 214, 214),
                         .accent = QColor(53, 132, 228),
                         .link = QColor(26, 95, 180)};

const Colors darkColors{.window = QColor(36, 36, 36),
                        .base = QColor(68, 68, 68),
                        .side = QColor(46, 46, 46),
                        .button = QColor(74, 74, 74),
                        .text = QColor(238, 238, 238),
                        .paleText = QColor(176, 176, 176),
                        .disabledText = QColor(150, 150, 150),
                        .line = QColor(72, 72, 72),
                        .accent = QColor(53, 132, 228),
                        .link = QColor(120, 174, 237)};

QPalette paletteOf(const Colors &colors)
{
    QPalette palette(colors.button, colors.window); // derives what isn't set here
    palette.setColor(QPalette::Base, colors.base);
    palette.setColor(QPalette::AlternateBase, colors.side);
    palette.setColor(QPalette::ToolTipBase, colors.button);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, colors.text);
        palette.setColor(QPalette::Disabled, role, colors.disabledText);
    }
    palette.setColor(QPalette::PlaceholderText, colors.paleText);
    palette.setColor(QPalette::Midlight, colors.line);
    palette.setColor(QPalette::Highlight, colors.accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, colors.link);
    return palette;
}

} // namespace

ColorScheme preferredColorScheme(const QDBusConnection &bus)
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"),
        QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("Read"));
    question.setArguments(
        {QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme")});
    const QDBusMessage answer = bus.call(question, QDBus::Block, patience);
    QVariant value = answer.arguments().value(0);
    while (value.canConvert<QDBusVariant>()) // the portal wraps it twice
        value = value.value<QDBusVariant>().variant();
    return value.toUInt() == prefersDark ? ColorScheme::Dark : ColorScheme::Light;
}

void apply(ColorScheme scheme)
{
    if (QApplication::style()->name().compare(QLatin1String("fusion"), Qt::CaseInsensitive) != 0)
        return;
    QApplication::setPalette(paletteOf(scheme == ColorScheme::Dark ? darkColors : lightColors));
}

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

} // namespace nimbrel::appearance
