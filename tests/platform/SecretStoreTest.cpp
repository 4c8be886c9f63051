#include "platform/SecretServiceStore.h"

#include "support/BusRecorder.h"
#include "support/PrivateDesktop.h"

#include <QCoreApplication>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

namespace nimbrel::test {

namespace {

using namespace std::chrono_literals;

const QString service = u"Nimbrel: Steuern & Bücher"_qs;
const QString account = u"/home/jörg/Cloud Drive/Säfe.nmc"_qs;

// The tool takes its arguments in the locale's coding.
const std::vector<std::string> utf8Locale = {"LC_ALL=C.UTF-8"};

// Asks through another program that knows nothing of Nimbrel.
RunResult tool(const std::string &action, const std::string &input = {})
{
    std::vector<std::string> command = {"secret-tool", action};
    if (action == "store")
        command.emplace_back("--label=made elsewhere");
    if (action == "search")
        command.insert(command.end(), {"--all", "--unlock"});
    command.insert(command.end(),
                   {"service", service.toStdString(), "account", account.toStdString()});
    return run(command, {.input = input, .environment = utf8Locale});
}

std::string lookedUp()
{
    return tool("lookup").output;
}

std::size_t itemCount()
{
    const RunResult found = tool("search");
    std::size_t count = 0;
    for (std::size_t at = found.output.find("\nlabel = "); at != std::string::npos;
         at = found.output.find("\nlabel = ", at + 1))
        ++count;
    return count;
}

std::optional<std::string> found(SecretServiceStore &store)
{
    const std::optional<SecureBuffer> secret = store.find(service, account);
    if (!secret)
        return std::nullopt;
    return std::string(secret->text());
}

template <class Work>
std::chrono::milliseconds timeOf(Work work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 begin);
}

class SecretStoreTest : public ::testing::Test
{
protected:
    PrivateDesktop _desktop;
    SecretServiceStore _store{20s};
};

TEST_F(SecretStoreTest, StoredSecretIsFoundByUsAndByAnotherTool)
{
    ASSERT_EQ(_store.add(service, account, "correct horse"), SecretStatus::Done);
    EXPECT_EQ(found(_store), "correct horse");
    EXPECT_EQ(lookedUp(), "correct horse");
}

TEST_F(SecretStoreTest, SecretOfAnotherToolIsFound)
{
    ASSERT_EQ(tool("store", "from elsewhere ü").status, 0);
    EXPECT_EQ(found(_store), "from elsewhere ü");
}

TEST_F(SecretStoreTest, NonAsciiSecretKeepsItsBytesNotItsCharacters)
{
    const std::string secret = "Grüße 密码 \xF0\x9F\x94\x91";
    ASSERT_EQ(_store.add(service, account, secret), SecretStatus::Done);
    EXPECT_EQ(found(_store), secret);
    EXPECT_EQ(lookedUp(), secret);
}

TEST_F(SecretStoreTest, SecretIsAnyRowOfBytes)
{
    using namespace std::string_view_literals;
    for (const std::string_view secret : {""sv, "a\0b"sv, "\xFF\xFE not text"sv, "\n"sv}) {
        ASSERT_EQ(_store.add(service, account, secret), SecretStatus::Done);
        EXPECT_EQ(found(_store), std::string(secret));
        ASSERT_EQ(_store.remove(service, account), SecretStatus::Done);
    }
}

TEST_F(SecretStoreTest, OnlyThePartOfATextIsStored)
{
    const std::string text = "secret and more";
    ASSERT_EQ(_store.add(service, account, std::string_view(text).substr(0, 6)),
              SecretStatus::Done);
    EXPECT_EQ(lookedUp(), "secret");
}

TEST_F(SecretStoreTest, StoringTwiceLeavesOneItem)
{
    ASSERT_EQ(_store.add(service, account, "old"), SecretStatus::Done);
    EXPECT_EQ(_store.add(service, account, "new"), SecretStatus::Duplicate);
    EXPECT_EQ(lookedUp(), "old");
    EXPECT_EQ(_store.modify(service, account, "new"), SecretStatus::Done);
    EXPECT_EQ(lookedUp(), "new");
    EXPECT_EQ(found(_store), "new");
    EXPECT_EQ(itemCount(), 1U);
}

TEST_F(SecretStoreTest, SecretOfAnotherToolIsADuplicateAndIsReplaced)
{
    ASSERT_EQ(tool("store", "theirs").status, 0);
    EXPECT_EQ(_store.add(service, account, "ours"), SecretStatus::Duplicate);
    EXPECT_EQ(_store.modify(service, account, "ours"), SecretStatus::Done);
    EXPECT_EQ(lookedUp(), "ours");
    EXPECT_EQ(itemCount(), 1U);
}

TEST_F(SecretStoreTest, RemovedSecretIsGone)
{
    ASSERT_EQ(_store.add(service, account, "x"), SecretStatus::Done);
    EXPECT_EQ(_store.remove(service, account), SecretStatus::Done);
    EXPECT_FALSE(found(_store));
    EXPECT_EQ(itemCount(), 0U);
    EXPECT_EQ(_store.remove(service, account), SecretStatus::NotFound);
}

TEST_F(SecretStoreTest, WhatWasNeverStoredIsNotFound)
{
    EXPECT_FALSE(found(_store));
    EXPECT_EQ(_store.modify(service, account, "x"), SecretStatus::NotFound);
    EXPECT_EQ(_store.remove(service, account), SecretStatus::NotFound);
    EXPECT_EQ(itemCount(), 0U);
}

TEST_F(SecretStoreTest, ServiceAndAccountBothTellItemsApart)
{
    ASSERT_EQ(_store.add(service, account, "one"), SecretStatus::Done);
    ASSERT_EQ(_store.add(service, account + u"2"_qs, "two"), SecretStatus::Done);
    ASSERT_EQ(_store.add(service + u"2"_qs, account, "three"), SecretStatus::Done);
    EXPECT_EQ(_store.remove(service, account + u"2"_qs), SecretStatus::Done);
    EXPECT_EQ(found(_store), "one");
    EXPECT_EQ(_store.find(service + u"2"_qs, account)->text(), "three");
}

TEST_F(SecretStoreTest, LabelIsReadableAndHoldsNoSecret)
{
    ASSERT_EQ(_store.add(service, account, "hidden"), SecretStatus::Done);
    const std::string listing =
        run({"secret-tool", "search", "--all", "service", service.toStdString()},
            {.environment = utf8Locale})
            .output;
    EXPECT_NE(listing.find("label = Nimbrel: Steuern & Bücher (Säfe.nmc)\n"), std::string::npos)
        << listing;
}

TEST_F(SecretStoreTest, OfSeveralItemsTheOneOfTheDefaultCollectionIsMeant)
{
    ASSERT_EQ(_store.add(service, account, "default"), SecretStatus::Done);
    // gnome-keyring's second collection, which is never locked and lives as long as it does.
    ASSERT_EQ(run({"secret-tool", "store", "--label=x", "--collection=session", "service",
                   service.toStdString(), "account", account.toStdString()},
                  {.input = "session", .environment = utf8Locale})
                  .status,
              0);
    ASSERT_EQ(itemCount(), 2U);
    EXPECT_EQ(found(_store), "default");
    EXPECT_EQ(_store.modify(service, account, "changed"), SecretStatus::Done);
    EXPECT_EQ(found(_store), "changed");
    // While the default collection is locked, the open one's item serves without a question.
    _desktop.lockKeyring();
    EXPECT_EQ(found(_store), "session");
    _desktop.unlockKeyring();
    EXPECT_EQ(_store.remove(service, account), SecretStatus::Done);
    EXPECT_EQ(found(_store), "session");
}

TEST_F(SecretStoreTest, LockedAndNobodyToAskGivesNothingAndChangesNothing)
{
    ASSERT_EQ(_store.add(service, account, "kept"), SecretStatus::Done);
    _desktop.lockKeyring();
    const auto time = timeOf([&] {
        EXPECT_FALSE(found(_store));
        EXPECT_EQ(_store.add(service, account, "new"), SecretStatus::Duplicate);
        EXPECT_EQ(_store.add(service, u"/other"_qs, "new"), SecretStatus::Failed);
        EXPECT_EQ(_store.modify(service, account, "new"), SecretStatus::Failed);
        EXPECT_EQ(_store.remove(service, account), SecretStatus::Failed);
    });
    EXPECT_LT(time, 20s);
    _desktop.unlockKeyring();
    EXPECT_EQ(found(_store), "kept");
    EXPECT_FALSE(_store.find(service, u"/other"_qs));
}

TEST_F(SecretStoreTest, PromptThatNobodyAnswersEndsAtTheLimit)
{
    ASSERT_EQ(_store.add(service, account, "kept"), SecretStatus::Done);
    _desktop.lockKeyring();
    BusRecorder prompter(u"org.gnome.keyring.SystemPrompter"_qs);
    prompter.stayAwayFromAnswers();
    SecretServiceStore store{1s};
    const auto time = timeOf([&] { EXPECT_FALSE(found(store)); });
    EXPECT_FALSE(prompter.calls().empty());
    EXPECT_GE(time, 1s);
    EXPECT_LT(time, 10s);
}

TEST_F(SecretStoreTest, ServiceThatDoesNotAnswerEndsAtTheLimit)
{
    SecretServiceStore store{1s};
    _desktop.signalKeyring(SIGSTOP);
    const auto time = timeOf([&] {
        EXPECT_FALSE(found(store));
        EXPECT_EQ(store.add(service, account, "x"), SecretStatus::Failed);
    });
    _desktop.signalKeyring(SIGCONT);
    EXPECT_GE(time, 2s);
    EXPECT_LT(time, 20s);
    EXPECT_FALSE(found(_store));
}

TEST_F(SecretStoreTest, BusThatDoesNotAnswerEndsAtTheLimit)
{
    SecretServiceStore store{1s};
    _desktop.signalBus(SIGSTOP);
    const auto time = timeOf([&] {
        EXPECT_FALSE(found(store));
        EXPECT_EQ(store.add(service, account, "x"), SecretStatus::Failed);
    });
    _desktop.signalBus(SIGCONT);
    EXPECT_LT(time, 20s);
    EXPECT_EQ(_store.add(service, account, "x"), SecretStatus::Done);
}

TEST_F(SecretStoreTest, RestartedServiceIsFoundAgain)
{
    ASSERT_EQ(_store.add(service, account, "kept"), SecretStatus::Done);
    _desktop.stopKeyring();
    EXPECT_FALSE(found(_store));
    EXPECT_EQ(_store.add(service, account, "new"), SecretStatus::NotFound);
    _desktop.startKeyring();
    EXPECT_EQ(found(_store), "kept");
    EXPECT_EQ(_store.modify(service, account, "new"), SecretStatus::Done);
    EXPECT_EQ(lookedUp(), "new");
}

TEST_F(SecretStoreTest, DeadBusNeitherEndsTheProgramNorHoldsIt)
{
    ASSERT_EQ(_store.add(service, account, "x"), SecretStatus::Done);
    _desktop.stopBus();
    const auto time = timeOf([&] {
        EXPECT_FALSE(found(_store));
        EXPECT_EQ(_store.remove(service, account), SecretStatus::NotFound);
        // The news of the bus's end would come through the program's own loop.
        for (int round = 0; round < 20; ++round) {
            QCoreApplication::processEvents();
            std::this_thread::sleep_for(10ms);
        }
    });
    EXPECT_LT(time, 5s);
}

TEST_F(SecretStoreTest, BusThatDiesDuringACallDoesNotEndTheProgram)
{
    SecretServiceStore store{5s};
    _desktop.signalKeyring(SIGSTOP);
    std::thread killer([this] {
        std::this_thread::sleep_for(300ms);
        _desktop.signalBus(SIGKILL);
    });
    EXPECT_FALSE(found(store));
    killer.join();
    for (int round = 0; round < 20; ++round) {
        QCoreApplication::processEvents();
        std::this_thread::sleep_for(10ms);
    }
}

TEST_F(SecretStoreTest, ManyCallsLeaveNoConnectionsBehind)
{
    ASSERT_EQ(_store.add(service, account, "x"), SecretStatus::Done);
    const auto descriptors = [] { return run({"sh", "-c", "ls /proc/$PPID/fd | wc -l"}).output; };
    (void)found(_store);
    const std::string before = descriptors();
    for (int round = 0; round < 20; ++round)
        ASSERT_EQ(found(_store), "x");
    EXPECT_TRUE(eventually([&] { return descriptors() == before; }, 5s)) << before << descriptors();
}

TEST(SecretStoreAloneTest, WithoutAServiceNothingIsFoundQuickly)
{
    const PrivateDesktop desktop({.keyring = false});
    SecretServiceStore store;
    const auto time = timeOf([&] {
        EXPECT_FALSE(found(store));
        EXPECT_EQ(store.add(service, account, "x"), SecretStatus::NotFound);
        EXPECT_EQ(store.modify(service, account, "x"), SecretStatus::NotFound);
        EXPECT_EQ(store.remove(service, account), SecretStatus::NotFound);
    });
    EXPECT_LT(time, 5s);
}

TEST(SecretStoreAloneTest, WithoutABusNothingIsFoundQuickly)
{
    const PrivateDesktop desktop({.bus = false});
    SecretServiceStore store;
    const auto time = timeOf([&] {
        EXPECT_FALSE(found(store));
        EXPECT_EQ(store.add(service, account, "x"), SecretStatus::NotFound);
    });
    EXPECT_LT(time, 5s);
}

TEST(SecretStoreAloneTest, WithoutAnAddressNoBusIsStarted)
{
    const PrivateDesktop desktop({.bus = false});
    const TempFolder programs;
    const std::string trace = programs / "started";
    ASSERT_EQ(shell("printf '#!/bin/sh\\ntouch \"%s\"\\n' '" + trace +
                        "' > dbus-launch && "
                        "chmod 755 dbus-launch",
                    {.folder = programs.path()})
                  .status,
              0);
    const std::string path = std::getenv("PATH");
    ::setenv("PATH", (programs.path() + ":" + path).c_str(), 1);
    ::setenv("DISPLAY", ":77", 1);
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    SecretServiceStore store;
    EXPECT_FALSE(found(store));
    EXPECT_EQ(store.add(service, account, "x"), SecretStatus::NotFound);
    ::unsetenv("DISPLAY");
    ::setenv("PATH", path.c_str(), 1);
    EXPECT_FALSE(std::filesystem::exists(trace));
}

} // namespace

} // namespace nimbrel::test
