// A session that is killed at any moment loses no folder, no list and no configuration.
#include "support/MountInfo.h"
#include "volume/Driver.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <random>
#include <thread>

namespace nimbrel::test {
namespace {

constexpr int killsOfEach = 50;
const std::string oldPassword = "the old password";
const std::string otherPassword = "the other password";

class KilledTest : public ::testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_MOUNTS(); }

    // Starts a session, waits for `line`, lets it go on for a while, kills it. What it said.
    std::string killed(const std::vector<DriverCommand> &commands, const std::string &line)
    {
        const auto session = startDriver(desktop, commands);
        EXPECT_TRUE(eventually([&] { return session->log().find(line) != std::string::npos; }))
            << session->log();
        std::this_thread::sleep_for(
            std::chrono::microseconds(std::uniform_int_distribution(0, 120'000)(dice)));
        session->signal(SIGKILL);
        (void)session->wait(std::chrono::seconds(30));
        return session->log();
    }

    // Mounts the volume in a new session, with whichever password opens it, reads its file and
    // unmounts it. The number of questions: 1 for the old password, 2 for the other one.
    long questionsToOpen(const std::string &label)
    {
        const std::string log = runDriver(desktop, {{"answer", oldPassword},
                                                    {"answer", otherPassword},
                                                    {"mount", label},
                                                    {"read", label, "kept.txt"},
                                                    {"unmount", label}});
        EXPECT_EQ(countLines(log, "read\tkept.txt\tkept words"), 1) << log;
        return countLines(log, "asked\t" + label);
    }

    void makeVolume(const std::string &label)
    {
        const std::string log =
            runDriver(desktop, {{"new", desktop.home() + "/" + label + ".nmc", label, oldPassword},
                                {"write", label, "kept.txt", "kept words"},
                                {"unmount", label}});
        ASSERT_EQ(countLines(log, "unmount\t" + label + "\tyes"), 1) << log;
    }

    static std::vector<DriverCommand> repeated(std::vector<DriverCommand> first,
                                               const std::vector<DriverCommand> &again)
    {
        for (int i = 0; i < 200; ++i)
            first.insert(first.end(), again.begin(), again.end());
        return first;
    }

    PrivateDesktop desktop{{.bus = false, .keyring = false}};
    std::mt19937 dice{20260917};
};

TEST_F(KilledTest, AChangeOfPasswordLeavesTheOldOneOrTheNewOne)
{
    makeVolume("Safe");
    std::string now = oldPassword;
    std::string next = otherPassword;
    int changed = 0;
    for (int i = 0; i < killsOfEach && !HasFailure(); ++i) {
        killed(repeated({{"answer", now}, {"mount", "Safe"}},
                        {{"change", "Safe", now, next}, {"change", "Safe", next, now}}),
               "mount\tSafe\tyes");
        const std::string before = now;
        if (questionsToOpen("Safe") == 2 ? now != otherPassword : now != oldPassword)
            std::swap(now, next);
        changed += before == now ? 0 : 1;
    }
    EXPECT_GT(changed, 0) << "no kill fell between two changes";
}

TEST_F(KilledTest, AListThatIsBeingSavedStaysWhole)
{
    for (const char *label : {"One", "Two", "Three"})
        makeVolume(label);
    for (int i = 0; i < killsOfEach && !HasFailure(); ++i) {
        killed(repeated({{"list"}}, {{"save"}}), "saved");
        const std::string log = runDriver(desktop, {{"list"}});
        for (const char *label : {"One", "Two", "Three"})
            EXPECT_NE(log.find(std::string("volume\t") + label + '\t'), std::string::npos) << log;
        EXPECT_EQ(log.find("alert"), std::string::npos) << log;
    }
    EXPECT_EQ(questionsToOpen("Three"), 1);
}

TEST_F(KilledTest, AMountLeavesAFolderThatMountsAgain)
{
    makeVolume("Safe");
    for (int i = 0; i < killsOfEach && !HasFailure(); ++i) {
        killed(
            repeated({{"list"}}, {{"answer", oldPassword}, {"mount", "Safe"}, {"unmount", "Safe"}}),
            "listed");
        (void)questionsToOpen("Safe");
    }
}

TEST_F(KilledTest, ANewFolderIsListedOrLeavesTheOthersAsTheyWere)
{
    makeVolume("Kept");
    int number = 0;
    std::vector<std::string> labels;
    for (int i = 0; i < killsOfEach && !HasFailure(); ++i) {
        std::vector<DriverCommand> commands{{"list"}};
        for (int more = 0; more < 20; ++more, ++number) {
            labels.push_back("New" + std::to_string(number));
            commands.push_back(
                {"new", desktop.home() + "/" + labels.back() + ".nmc", labels.back(), oldPassword});
        }
        killed(commands, "listed");
        (void)questionsToOpen("Kept");
    }
    // Every folder that got its configuration opens; every one of the list is there.
    const std::string list = runDriver(desktop, {{"list"}});
    long whole = 0;
    for (const std::string &label : labels) {
        const std::string folder = desktop.home() + "/" + label + ".nmc";
        const bool hasConfiguration = std::filesystem::exists(folder + "/.encfs6.xml");
        const bool isListed = list.find("volume\t" + label + '\t') != std::string::npos;
        EXPECT_TRUE(hasConfiguration || !isListed) << label;
        if (!hasConfiguration)
            continue;
        ++whole;
        const RunResult encoded =
            run({NIMBREL_NIMBRELCTL, "encode", folder, "--password-file", "-", "/a.txt"},
                {.input = oldPassword + "\n"});
        EXPECT_EQ(encoded.status, 0) << label << ": " << encoded.error;
    }
    EXPECT_GT(whole, 0) << "no folder was ever finished";
}

} // namespace
} // namespace nimbrel::test
