#include "mount/MountedFolder.h"
#include "mount/Programs.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

// Rows that differ in size, so that pages fill and overflow in many ways.
constexpr const char *fill =
    "CREATE TABLE t(id INTEGER PRIMARY KEY, text TEXT, data BLOB);"
    "CREATE INDEX byText ON t(text);"
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<20000)"
    " INSERT INTO t SELECT i, printf('row %08d', i*7919%20000), zeroblob(i%300) FROM n;";
constexpr const char *change = "UPDATE t SET data=zeroblob(500) WHERE id%7=0;"
                               "DELETE FROM t WHERE id%10=0; VACUUM;";
constexpr const char *look =
    "PRAGMA integrity_check; SELECT count(*), sum(length(data)), sum(id) FROM t;";

class SqliteTest : public testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_PROGRAM("sqlite3");
    }

    static std::vector<std::string> command(const std::string &file)
    {
        return {"sqlite3",   "-batch", "-bail",           "-init",
                "/dev/null", "-cmd",   ".timeout 100000", file};
    }

    static RunResult sqlite(const std::string &file, const std::string &statements)
    {
        return run(command(file), {.input = "PRAGMA synchronous=FULL;\n" + statements});
    }

    // What the same statements give on an ordinary disk.
    [[nodiscard]] std::string expected(const std::string &statements) const
    {
        return sqlite(_temp / "ordinary", statements).output;
    }

    [[nodiscard]] std::string journal() const
    {
        return "PRAGMA journal_mode=" + GetParam() + ";\n";
    }

    TempFolder _temp;
};

TEST_P(SqliteTest, TwentyThousandRowsStayWholeOverARemount)
{
    MountedFolder disk;
    const std::string file = disk / "rows.db";
    ASSERT_TRUE(worked(sqlite(file, journal() + fill)));
    const std::string first = expected(fill + std::string(look));
    EXPECT_EQ(sqlite(file, look).output, first);
    disk.remount();
    EXPECT_EQ(sqlite(file, look).output, first);
    ASSERT_TRUE(worked(sqlite(file, change)));
    const std::string second = expected(change + std::string(look));
    EXPECT_EQ(sqlite(file, look).output, second);
    disk.remount();
    EXPECT_EQ(sqlite(file, look).output, second);
    EXPECT_EQ(second.substr(0, 3), "ok\n");
}

TEST_P(SqliteTest, ARolledBackTransactionLeavesNothing)
{
    MountedFolder disk;
    const std::string file = disk / "rows.db";
    ASSERT_TRUE(worked(sqlite(file, journal() + fill)));
    const std::string before = sqlite(file, look).output;
    // A cache of ten pages makes it write changed pages before the end.
    ASSERT_TRUE(worked(sqlite(file, "PRAGMA cache_size=10; BEGIN; UPDATE t SET text='gone';"
                                    "DELETE FROM t WHERE id%3=0; ROLLBACK;")));
    EXPECT_EQ(sqlite(file, look).output, before);
    disk.remount();
    EXPECT_EQ(sqlite(file, look).output, before);
}

TEST_P(SqliteTest, TwoProcessesWriteByTurns)
{
    MountedFolder disk;
    const std::string file = disk / "rows.db";
    ASSERT_TRUE(worked(
        sqlite(file, journal() + "CREATE TABLE t(id INTEGER PRIMARY KEY, who TEXT, data BLOB);")));
    const auto rows = [](const std::string &who) {
        std::string text;
        for (int i = 0; i < 150; ++i)
            text += "INSERT INTO t(who, data) VALUES('" + who + "', zeroblob(700));\n";
        return text;
    };
    RunningProcess one(command(file), {.input = rows("one")});
    RunningProcess two(command(file), {.input = rows("two")});
    ASSERT_EQ(one.wait(std::chrono::seconds(250)), 0) << one.log();
    ASSERT_EQ(two.wait(std::chrono::seconds(250)), 0) << two.log();
    const std::string counts = "PRAGMA integrity_check; SELECT who, count(*) FROM t GROUP BY who;";
    EXPECT_EQ(sqlite(file, counts).output, "ok\none|150\ntwo|150\n");
    disk.remount();
    EXPECT_EQ(sqlite(file, counts).output, "ok\none|150\ntwo|150\n");
}

TEST_P(SqliteTest, AKilledWriterLeavesASoundDatabase)
{
    MountedFolder disk;
    const std::string file = disk / "rows.db";
    ASSERT_TRUE(worked(sqlite(file, journal() + "CREATE TABLE t(id INTEGER PRIMARY KEY, data BLOB);"
                                                "INSERT INTO t VALUES(1, zeroblob(10));")));
    std::string endless;
    for (int i = 0; i < 20000; ++i)
        endless += "INSERT INTO t(data) VALUES(zeroblob(3000));\n";
    RunningProcess writer(command(file), {.input = endless});
    const auto rows = [&] { return sqlite(file, "SELECT count(*) FROM t;").output; };
    const auto hasSome = [&] { return std::strtol(rows().c_str(), nullptr, 10) > 5; };
    EXPECT_TRUE(eventually(hasSome, std::chrono::minutes(3)));
    writer.signal(SIGKILL);
    ASSERT_TRUE(writer.wait(std::chrono::seconds(60)));
    disk.remount();
    EXPECT_EQ(sqlite(file, "PRAGMA integrity_check;").output, "ok\n");
    EXPECT_TRUE(hasSome());
}

INSTANTIATE_TEST_SUITE_P(All, SqliteTest, testing::Values("DELETE", "TRUNCATE", "PERSIST", "WAL"),
                         [](const auto &each) { return each.param; });

} // namespace
} // namespace nimbrel::test
