#include "assistant/Icons.h"

#include <QImage>

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

QImage picture(const QIcon &icon)
{
    return icon.pixmap(32, 32).toImage();
}

bool isBlank(const QImage &image)
{
    QImage blank(image.size(), image.format());
    blank.fill(Qt::transparent);
    return image == blank;
}

class NamedIconTest : public ::testing::TestWithParam<const char *>
{
};

TEST_P(NamedIconTest, HasAPicture)
{
    const QIcon icon = icons::named(QLatin1String(GetParam()));
    ASSERT_FALSE(icon.isNull());
    EXPECT_FALSE(isBlank(picture(icon)));
}

INSTANTIATE_TEST_SUITE_P(
    All, NamedIconTest,
    ::testing::Values("NSApplicationIcon", "GrayDot", "BlueDot", "DisabledGrayDot", "NSCaution",
                      "NSActionTemplate", "folder", "documents", "show-password", "hide-password",
                      "caps-lock", "encrypted", "encrypted_alt", "decrypted", "decrypted_alt",
                      "volume", "volume_unmounted", "new_32x32", "add_32x32", "open_32x32",
                      "remove_32x32", "mount_32x32", "unmount_32x32", "change_32x32", "clear_32x32",
                      "preferences_32x32", "mobile_32x32", "mode_32x32"));

TEST(IconsTest, ANameThatNobodyKnowsHasNone)
{
    EXPECT_TRUE(icons::named(QStringLiteral("no such icon")).isNull());
}

TEST(IconsTest, ATintedIconHasThatColourAlone)
{
    const QImage image = picture(icons::tinted(QStringLiteral("show-password"), Qt::magenta));
    ASSERT_FALSE(isBlank(image));
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (const QColor color = image.pixelColor(x, y); color.alpha() == 255) {
                EXPECT_EQ(color, QColor(Qt::magenta));
            }
}

} // namespace
} // namespace nimbrel::test
