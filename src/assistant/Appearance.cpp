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

QPalette darkPalette()
{
    const QColor window(36, 36, 36);
    const QColor base(30, 30, 30);
    const QColor button(58, 58, 58);
    const QColor text(238, 238, 238);
    QPalette palette(button, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, button);
    palette.setColor(QPalette::ToolTipBase, button);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, QColor(165, 165, 165));
    palette.setColor(QPalette::Highlight, QColor(53, 132, 228));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(120, 174, 237));
    palette.setColor(QPalette::Midlight, QColor(72, 72, 72));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(120, 120, 120));
    return palette;
}

} // namespace

ColorScheme preferredColorScheme()
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"),
        QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("Read"));
    question.setArguments(
        {QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme")});
    const QDBusMessage answer =
        QDBusConnection::sessionBus().call(question, QDBus::Block, patience);
    QVariant value = answer.arguments().value(0);
    while (value.canConvert<QDBusVariant>()) // the portal wraps it twice
        value = value.value<QDBusVariant>().variant();
    return value.toUInt() == prefersDark ? ColorScheme::Dark : ColorScheme::Light;
}

void apply(ColorScheme scheme)
{
    if (QApplication::style()->name().compare(QLatin1String("fusion"), Qt::CaseInsensitive) != 0)
        return;
    QApplication::setPalette(
        scheme == ColorScheme::Dark ? darkPalette() : QApplication::style()->standardPalette());
}

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

} // namespace nimbrel::appearance
