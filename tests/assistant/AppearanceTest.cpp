#include "assistant/Appearance.h"

#include "support/PrivateDesktop.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusVariant>
#include <QStyle>
#include <QStyleFactory>

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

class AppearanceTest : public ::testing::Test
{
protected:
    AppearanceTest() { QApplication::setStyle(QStyleFactory::create(QStringLiteral("fusion"))); }
    ~AppearanceTest() override { appearance::apply(appearance::ColorScheme::Light); }
};

TEST_F(AppearanceTest, QtsOwnStyleTurnsDarkAndLightAgain)
{
    appearance::apply(appearance::ColorScheme::Dark);
    EXPECT_TRUE(appearance::isDark(QApplication::palette()));
    appearance::apply(appearance::ColorScheme::Light);
    EXPECT_FALSE(appearance::isDark(QApplication::palette()));
}

TEST_F(AppearanceTest, DarkTextIsReadableInEveryRole)
{
    appearance::apply(appearance::ColorScheme::Dark);
    const QPalette palette = QApplication::palette();
    for (const auto &[text, ground] : {std::pair{QPalette::WindowText, QPalette::Window},
                                       {QPalette::Text, QPalette::Base},
                                       {QPalette::ButtonText, QPalette::Button},
                                       {QPalette::ToolTipText, QPalette::ToolTipBase},
                                       {QPalette::PlaceholderText, QPalette::Base}})
        EXPECT_GT(palette.color(text).lightness() - palette.color(ground).lightness(), 100);
}

// The desktop's settings, as its portal gives them.
class Portal final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    uint scheme = 0;

public Q_SLOTS:
    QDBusVariant Read(const QString &area, const QString &key) const
    {
        const bool isKnown = area == QLatin1String("org.freedesktop.appearance") &&
                             key == QLatin1String("color-scheme");
        // Wrapped twice, as real portals do.
        return QDBusVariant(QVariant::fromValue(QDBusVariant(isKnown ? scheme : 0)));
    }
};

TEST_F(AppearanceTest, FollowsTheDesktopsPreference)
{
    const PrivateDesktop desktop({.bus = true, .keyring = false});
    const QString name = QStringLiteral("private");
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
    ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
    Portal portal;
    ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal,
                                   QDBusConnection::ExportAllSlots));
    for (const auto &[scheme, expected] : {std::pair{1U, appearance::ColorScheme::Dark},
                                           {2U, appearance::ColorScheme::Light},
                                           {0U, appearance::ColorScheme::Light}}) {
        portal.scheme = scheme;
        EXPECT_EQ(appearance::preferredColorScheme(bus), expected);
    }
    QDBusConnection::disconnectFromBus(name);
}

TEST_F(AppearanceTest, ADesktopThatSaysNothingIsLight)
{
    EXPECT_EQ(appearance::preferredColorScheme(QDBusConnection(QStringLiteral("none"))),
              appearance::ColorScheme::Light);
}

} // namespace
} // namespace nimbrel::test

#include "AppearanceTest.moc"
