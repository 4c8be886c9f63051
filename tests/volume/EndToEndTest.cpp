// From the first volume to the second session, nothing faked but the person.
#include "fs/MountTable.h"
#include "support/Files.h"
#include "support/MountInfo.h"
#include "volume/Driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace nimbrel::test {
namespace {

const std::string firstPassword = "f\xC3\xA4hre zum ersten Ufer";
const std::string secondPassword = "second secret, to be changed";
const std::string newPassword = "second secret, changed";

class EndToEndTest : public ::testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_MOUNTS(); }

    // True when the log of a running session has the line, soon.
    static bool says(const RunningProcess &session, const std::string &line)
    {
        return eventually([&] { return countLines(session.log(), line) > 0; });
    }

    // Files below the home folder with `text` in them, the keyring's own left out.
    std::vector<std::string> filesWith(const std::string &text) const
    {
        std::vector<std::string> found;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(desktop.home()))
            if (entry.is_regular_file() &&
                entry.path().string().find("/keyrings/") == std::string::npos &&
                readFile(entry.path()).find(text) != std::string::npos)
                found.push_back(entry.path());
        return found;
    }

    long mountsBelowHome() const
    {
        return std::ranges::count_if(mountTable(), [&](const Mount &mount) {
            return isAtOrBelow(mount.point, std::filesystem::canonical(desktop.home()).string());
        });
    }

    PrivateDesktop desktop;
    const std::string cloud = desktop.home() + "/Cloud";
};

TEST_F(EndToEndTest, TwoVolumesLiveThroughThreeSessionsAndLeaveNothingOpen)
{
    const std::string first =
        runDriver(desktop, {{"new", cloud + "/First.nmc", "First", firstPassword},
                            {"new", cloud + "/Second.nmc", "Second", secondPassword},
                            {"write", "First", "a.txt", "plain words of the first"},
                            {"write", "Second", "b.txt", "plain words of the second"},
                            {"save"},
                            {"unmount", "First"},
                            {"unmount", "Second"}});
    EXPECT_EQ(countLines(first, "created\tFirst"), 1) << first;
    EXPECT_EQ(countLines(first, "unmount\tSecond\tyes"), 1) << first;
    EXPECT_EQ(mountsBelowHome(), 0);

    const auto second = startDriver(desktop, {{"automount", "2"},
                                              {"read", "First", "a.txt"},
                                              {"read", "Second", "b.txt"},
                                              {"await-unmounted", "First"},
                                              {"change", "Second", secondPassword, newPassword}});
    ASSERT_TRUE(says(*second, "read\tb.txt\tplain words of the second")) << second->log();
    EXPECT_EQ(countLines(second->log(), "asked\tFirst"), 0) << second->log();
    ASSERT_EQ(run({"fusermount3", "-u", desktop.home() + "/Volumes/First"}).status, 0);
    ASSERT_TRUE(says(*second, "unmounted\tFirst")) << second->log();
    ASSERT_TRUE(says(*second, "changed\tSecond\tyes")) << second->log();
    ASSERT_EQ(second->wait(std::chrono::seconds(60)), 0) << second->log();
    EXPECT_EQ(mountsBelowHome(), 0);

    const std::string third = runDriver(desktop, {{"list"},
                                                  {"automount", "2"},
                                                  {"read", "First", "a.txt"},
                                                  {"read", "Second", "b.txt"},
                                                  {"unmount", "First"},
                                                  {"unmount", "Second"}});
    EXPECT_EQ(countLines(third, "read\ta.txt\tplain words of the first"), 1) << third;
    EXPECT_EQ(countLines(third, "read\tb.txt\tplain words of the second"), 1) << third;
    EXPECT_EQ(third.find("asked"), std::string::npos) << third;
    EXPECT_EQ(third.find("alert"), std::string::npos) << third;

    EXPECT_EQ(mountsBelowHome(), 0);
    EXPECT_TRUE(std::filesystem::is_empty(desktop.home() + "/Volumes"));
    for (const std::string &secret : {firstPassword, secondPassword, newPassword})
        EXPECT_THAT(filesWith(secret), ::testing::IsEmpty());
    EXPECT_THAT(filesWith("plain words"), ::testing::IsEmpty());
}

} // namespace
} // namespace nimbrel::test
