#include "app/SystemLog.h"

#include "support/Messages.h"
#include "support/Files.h"
#include "support/TempFolder.h"

#include <QDebug>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <syslog.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace nimbrel::test {
namespace {

struct JournalLine
{
    int priority = 0;
    std::string text;
    bool operator==(const JournalLine &) const = default;
};

std::vector<JournalLine> journal; // filled under the handler's own lock

void keep(int priority, const char *format, va_list arguments)
{
    std::array<char, 1024> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    journal.push_back({priority, text.data()});
}

} // namespace
} // namespace nimbrel::test

// This program's own stand before the C library's, with and without the checks of its headers.
extern "C" void syslog(int priority, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    nimbrel::test::keep(priority, format, arguments);
    va_end(arguments);
}

extern "C" void __syslog_chk(int priority, int /*flag*/, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    nimbrel::test::keep(priority, format, arguments);
    va_end(arguments);
}

namespace nimbrel::test {
namespace {

TEST(SystemLogLineTest, ALineGoesThroughTheMessageHandlerAsItIs)
{
    const Messages messages;
    systemLog(u"a \"path\" with 100 %s, %n\nand two lines "_qs);
    EXPECT_EQ(messages.texts(), QStringList{u"a \"path\" with 100 %s, %n\nand two lines "_qs});
}

TEST(SystemLogLineTest, ADiagnosticLineNamesItsOrigin)
{
    const Messages messages;
    systemLogAt("-[NBNimbrelVolume mount]", 12, u"Safe %@: Mounting..."_qs);
    EXPECT_EQ(messages.texts(),
              QStringList{u"-[NBNimbrelVolume mount] [Line 12] Safe %@: Mounting..."_qs});
}

// The installed handler, with standard error in a file.
class SystemLogTest : public testing::Test
{
protected:
    SystemLogTest() : _before(::dup(STDERR_FILENO))
    {
        journal.clear();
        ::unsetenv("JOURNAL_STREAM");
        const int file = ::open(_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        ::dup2(file, STDERR_FILENO);
        ::close(file);
        installSystemLog();
    }
    ~SystemLogTest() override
    {
        qInstallMessageHandler(nullptr);
        ::dup2(_before, STDERR_FILENO);
        ::close(_before);
        ::unsetenv("JOURNAL_STREAM");
    }

    // What stands in standard error and the journal alike.
    std::string line() const
    {
        EXPECT_EQ(journal.size(), 1U);
        const std::string text = journal.empty() ? "" : journal.front().text;
        EXPECT_EQ(readFile(_path), text + "\n");
        return text;
    }

    TempFolder _temp;
    std::string _path = _temp / "stderr";
    int _before;
};

TEST_F(SystemLogTest, ALineGoesToStandardErrorAndTheJournal)
{
    systemLog(u"Mounting \u00c4pfel..."_qs);
    EXPECT_EQ(line(), "Mounting Äpfel...");
    EXPECT_EQ(journal.front().priority, LOG_NOTICE);
}

TEST_F(SystemLogTest, TheLevelFollowsTheKindOfMessage)
{
    qDebug("d");
    qInfo("i");
    qWarning("w");
    qCritical("c");
    const std::vector<JournalLine> wanted{
        {LOG_DEBUG, "d"}, {LOG_NOTICE, "i"}, {LOG_WARNING, "w"}, {LOG_ERR, "c"}};
    EXPECT_EQ(journal, wanted);
}

TEST_F(SystemLogTest, ATextThatLooksLikeAFormatIsNone)
{
    systemLog(u"%s%s%s %n 100 %d"_qs);
    EXPECT_EQ(line(), "%s%s%s %n 100 %d");
}

TEST_F(SystemLogTest, AMessageIsOneLine)
{
    systemLog(u"one\ntwo\r\nthree\u2028four"_qs);
    EXPECT_EQ(line(), "one\\ntwo\\u000d\\nthree\\u2028four");
}

TEST_F(SystemLogTest, ControlCharactersDoNotReachTheTerminal)
{
    systemLog(u"a\u001b[2Jb\u009bc"_qs + QChar(0) + u"d"_qs);
    EXPECT_EQ(line(), "a\\u001b[2Jb\\u009bc\\u0000d");
}

TEST_F(SystemLogTest, TheJournalsOwnStreamIsWrittenOnce)
{
    struct stat status = {};
    ASSERT_EQ(::fstat(STDERR_FILENO, &status), 0);
    ::setenv("JOURNAL_STREAM", fmt::format("{}:{}", status.st_dev, status.st_ino).c_str(), 1);
    systemLog(u"once"_qs);
    EXPECT_EQ(readFile(_path), "once\n");
    EXPECT_TRUE(journal.empty());
}

TEST_F(SystemLogTest, AnotherStreamThanTheJournalsCounts)
{
    ::setenv("JOURNAL_STREAM", "1:1", 1);
    systemLog(u"twice"_qs);
    EXPECT_EQ(line(), "twice");
}

TEST_F(SystemLogTest, LinesOfManyThreadsDoNotMix)
{
    constexpr int threadCount = 4;
    constexpr int lineCount = 50;
    const QString text(300, u'x');
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < threadCount; ++thread)
            threads.emplace_back([&] {
                for (int line = 0; line < lineCount; ++line)
                    systemLog(text);
            });
    }
    std::string wanted;
    for (int line = 0; line < threadCount * lineCount; ++line)
        wanted += text.toStdString() + "\n";
    EXPECT_EQ(readFile(_path), wanted);
    EXPECT_EQ(journal.size(), std::size_t{threadCount * lineCount});
}

} // namespace
} // namespace nimbrel::test
