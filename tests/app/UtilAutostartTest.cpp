#include "app/Util.h"

#include "platform/LoginItem.h"
#include "support/Files.h"
#include "support/PrivateDesktop.h"

#include <QCoreApplication>

#include <array>
#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

class UtilAutostartTest : public testing::Test
{
protected:
    std::string entry() const { return readFile(_path); }

    PrivateDesktop _desktop{{.bus = false, .keyring = false}};
    std::string _path = _desktop.config() + "/autostart/com.nimbrel.Nimbrel.desktop";
};

TEST_F(UtilAutostartTest, SwitchingOnAndOffTellsThatItChanged)
{
    EXPECT_FALSE(Util::willAutostart());
    EXPECT_TRUE(Util::setAutostart(true));
    EXPECT_TRUE(Util::willAutostart());
    EXPECT_TRUE(Util::setAutostart(false));
    EXPECT_FALSE(Util::willAutostart());
}

TEST_F(UtilAutostartTest, SwitchingOnTwiceChangesNothing)
{
    ASSERT_TRUE(Util::setAutostart(u"/opt/nimbrel"_qs, true));
    const std::string before = entry();
    const auto time = std::filesystem::last_write_time(_path);
    EXPECT_FALSE(Util::setAutostart(u"/opt/nimbrel"_qs, true));
    EXPECT_EQ(entry(), before);
    EXPECT_EQ(std::filesystem::last_write_time(_path), time);
}

TEST_F(UtilAutostartTest, SwitchingOffWhatIsOffChangesNothing)
{
    EXPECT_FALSE(Util::setAutostart(u"/opt/nimbrel"_qs, false));
    EXPECT_FALSE(std::filesystem::exists(_path));
}

TEST_F(UtilAutostartTest, TheOwnProgramIsMeantWithoutAPath)
{
    ASSERT_TRUE(Util::setAutostart(true));
    const auto own = std::filesystem::read_symlink("/proc/self/exe").string();
    EXPECT_TRUE(Util::willAutostart(QString::fromStdString(own)));
    EXPECT_FALSE(Util::willAutostart(u"/opt/nimbrel"_qs));
}

// Runs `work` in an application with that second argument.
template <class Work>
void withArgument(std::string argument, Work work)
{
    std::string name = "nimbrel";
    std::array<char *, 3> arguments{name.data(), argument.data(), nullptr};
    int count = 2;
    const QCoreApplication application(count, arguments.data());
    work();
}

TEST(UtilLaunchTest, TheSessionsArgumentTellsALoginItem)
{
    withArgument(loginItem::launchArgument.toStdString(), [] {
        EXPECT_TRUE(Util::wasLaunchedAsLoginItem());
        EXPECT_TRUE(Util::wasLaunchedByProcess(u"lgnw"_qs));
        EXPECT_FALSE(Util::wasLaunchedByProcess(u"MACS"_qs));
        EXPECT_FALSE(Util::wasLaunchedByProcess(QString()));
    });
}

TEST(UtilLaunchTest, AnyOtherStartIsNone)
{
    withArgument("/home/folder", [] { EXPECT_FALSE(Util::wasLaunchedAsLoginItem()); });
}

} // namespace
} // namespace nimbrel::test
