#include "app/Log.h"

#include "support/Messages.h"
#include "app/Util.h"
#include "fs/FuseCheck.h"
#include "support/Files.h"
#include "support/TempFolder.h"

#include <QRegularExpression>
#include <QTime>

#include <array>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

namespace nimbrel::test {
namespace {

class LogTest : public testing::Test
{
protected:
    // Logs with a log that is gone again, so that all is written.
    template <class Work>
    void withLog(Work work)
    {
        Log log(QString::fromStdString(_folder));
        log.switchOn();
        work(log);
    }
    unsigned mode() const
    {
        struct stat status = {};
        EXPECT_EQ(::stat(_file.c_str(), &status), 0);
        return status.st_mode & 07777U;
    }

    Messages _messages;
    TempFolder _temp;
    std::string _folder = _temp / "Nimbrel";
    std::string _file = _folder + "/Nimbrel.log";
};

TEST_F(LogTest, SwitchedOffNothingIsMade)
{
    {
        Log log(QString::fromStdString(_folder));
        EXPECT_FALSE(log.isOn());
        log.banner(u"1"_qs, u"2"_qs);
        log.NBLog(u"message"_qs);
    }
    EXPECT_FALSE(std::filesystem::exists(_folder));
    EXPECT_TRUE(_messages.texts().isEmpty());
}

TEST_F(LogTest, SwitchedOnWithoutAMessageNothingIsMade)
{
    withLog([](Log &log) { EXPECT_TRUE(log.isOn()); });
    EXPECT_FALSE(std::filesystem::exists(_folder));
}

TEST_F(LogTest, TheBannerNamesTheVersions)
{
    withLog([](Log &log) { log.banner(u"1.2 (34)"_qs, u"3.14.0"_qs); });
    const std::string wanted = "\n\nNimbrel 1.2 (34) running on OS X " +
                               Util::OSVersion().toStdString() + " with FUSE 3.14.0. \n\n";
    EXPECT_EQ(readFile(_file), wanted);
    EXPECT_EQ(_messages.texts(), QStringList{QString::fromStdString(wanted)});
}

TEST_F(LogTest, TheVersionTextHasTheVersionAndTheBuild)
{
    static const QRegularExpression form(uR"(^(\d+\.\d+\.\d+) \(\1\)$)"_qs);
    EXPECT_TRUE(form.match(Log::versionText()).hasMatch()) << Log::versionText().toStdString();
}

TEST_F(LogTest, TheLibraryTellsItsVersion)
{
    static const QRegularExpression form(uR"(^3\.\d+\.\d+)"_qs);
    EXPECT_TRUE(form.match(QString::fromStdString(fuseVersion())).hasMatch()) << fuseVersion();
}

TEST_F(LogTest, ALineHasTheLocalTimeAndNoDate)
{
    const QTime before = QTime::currentTime();
    withLog([](Log &log) { log.NBLog(u"100 %s of \u00c4pfel"_qs); });
    static const QRegularExpression form(
        uR"(^(\d\d:\d\d:\d\d\.\d\d\d) 100 %s of \x{c4}pfel\n$)"_qs);
    const auto match = form.match(QString::fromStdString(readFile(_file)));
    ASSERT_TRUE(match.hasMatch()) << readFile(_file);
    const QTime time = QTime::fromString(match.captured(1), u"HH:mm:ss.zzz"_qs);
    ASSERT_TRUE(time.isValid());
    const int waited = (before.msecsTo(time) + 86400000) % 86400000; // over midnight, too
    EXPECT_LT(waited, 60000);
    EXPECT_EQ(_messages.texts(), QStringList{u"100 %s of \u00c4pfel"_qs});
}

TEST_F(LogTest, ANewFileIsItsOwnersAlone)
{
    withLog([](Log &log) { log.NBLog(u"x"_qs); });
    EXPECT_EQ(mode(), 0600U);
}

TEST_F(LogTest, TheBannerLandsBehindOldContents)
{
    std::filesystem::create_directory(_folder);
    writeFile(_file, "old\n");
    ::chmod(_file.c_str(), 0640);
    withLog([](Log &log) { log.banner(u"1 (1)"_qs, u"3"_qs); });
    EXPECT_TRUE(readFile(_file).starts_with("old\n\n\nNimbrel 1 (1) running on OS X "));
    EXPECT_EQ(mode(), 0640U);
}

TEST_F(LogTest, WithoutTheParentNoFileIsMade)
{
    _folder = _temp / "missing/Nimbrel";
    withLog([](Log &log) { log.NBLog(u"said all the same"_qs); });
    EXPECT_FALSE(std::filesystem::exists(_temp / "missing"));
    EXPECT_EQ(_messages.texts(), QStringList{u"said all the same"_qs});
}

TEST_F(LogTest, OpeningIsTriedAgainWithTheNextMessage)
{
    writeFile(_folder, "in the way");
    withLog([&](Log &log) {
        log.NBLog(u"first"_qs);
        while (_messages.texts().size() < 1)
            std::this_thread::yield();
        // The file of the first message isn't open: its write follows its text in the system log.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        std::filesystem::remove(_folder);
        std::filesystem::create_directory(_folder);
        log.NBLog(u"second"_qs);
    });
    EXPECT_TRUE(readFile(_file).ends_with(" second\n"));
}

TEST_F(LogTest, TheFileStaysOpen)
{
    withLog([&](Log &log) {
        log.NBLog(u"first"_qs);
        while (!std::filesystem::exists(_file) || readFile(_file).empty())
            std::this_thread::yield();
        std::filesystem::rename(_file, _temp / "moved");
        log.NBLog(u"second"_qs);
    });
    EXPECT_FALSE(std::filesystem::exists(_file));
    EXPECT_TRUE(readFile(_temp / "moved").ends_with(" second\n"));
}

TEST_F(LogTest, WhatAnotherProcessAddedStays)
{
    withLog([&](Log &log) {
        log.NBLog(u"first"_qs);
        while (!std::filesystem::exists(_file) || readFile(_file).empty())
            std::this_thread::yield();
        writeFile(_file, readFile(_file) + "theirs\n");
        log.NBLog(u"second"_qs);
    });
    EXPECT_NE(readFile(_file).find(" first\ntheirs\n"), std::string::npos);
    EXPECT_TRUE(readFile(_file).ends_with(" second\n"));
}

TEST_F(LogTest, MessagesStayInTheirOrder)
{
    constexpr int count = 500;
    withLog([](Log &log) {
        for (int number = 0; number < count; ++number)
            log.NBLog(QString::number(number));
    });
    const QStringList lines = QString::fromStdString(readFile(_file)).split(u'\n');
    ASSERT_EQ(lines.size(), count + 1);
    for (int number = 0; number < count; ++number)
        EXPECT_EQ(lines[number].section(u' ', 1), QString::number(number));
}

TEST_F(LogTest, LinesOfManyThreadsDoNotMix)
{
    withLog([](Log &log) {
        std::array<std::jthread, 4> threads;
        for (std::jthread &thread : threads)
            thread = std::jthread([&log] {
                for (int line = 0; line < 50; ++line)
                    log.NBLog(QString(200, u'x'));
            });
    });
    const QStringList lines = QString::fromStdString(readFile(_file)).split(u'\n');
    ASSERT_EQ(lines.size(), 201);
    for (int line = 0; line < 200; ++line)
        EXPECT_EQ(lines[line].section(u' ', 1), QString(200, u'x'));
}

TEST_F(LogTest, TheUsersOwnFileLiesInTheStateFolder)
{
    const QByteArray before = qgetenv("XDG_STATE_HOME");
    qputenv("XDG_STATE_HOME", _temp.path().c_str());
    {
        Log log;
        log.switchOn();
        log.NBLog(u"own"_qs);
    }
    before.isEmpty() ? qunsetenv("XDG_STATE_HOME") : qputenv("XDG_STATE_HOME", before);
    EXPECT_TRUE(readFile(_file).ends_with(" own\n"));
}

} // namespace
} // namespace nimbrel::test
