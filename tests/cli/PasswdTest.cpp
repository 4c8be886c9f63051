#include "cli/Workbench.h"
#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

namespace files = std::filesystem;

class PasswdTest : public testing::Test
{
protected:
    [[nodiscard]] RunResult change(const std::string &folder, const std::string &from,
                                   const std::string &to) const
    {
        return bench.nimbrelctl({"passwd", folder, "--password-file", bench.passwordFile(from),
                                 "--new-password-file", bench.passwordFile(to)});
    }
    // The exit status of a command that needs the password.
    [[nodiscard]] int statusOf(const std::string &folder, const std::string &password) const
    {
        return bench
            .nimbrelctl({"encode", folder, "name", "--password-file", bench.passwordFile(password)})
            .status;
    }
    [[nodiscard]] std::string encoded(const std::string &folder, const std::string &password) const
    {
        return bench
            .nimbrelctl({"encode", folder, "name", "--password-file", bench.passwordFile(password)})
            .output;
    }
    [[nodiscard]] std::vector<std::string> backups() const
    {
        std::vector<std::string> paths;
        for (const files::directory_entry &entry : files::directory_iterator(bench.backups()))
            paths.push_back(entry.path());
        return paths;
    }

    Workbench bench;
};

TEST_F(PasswdTest, TheNewPasswordOpensAndTheOldOneDoesNot)
{
    const std::string folder = bench.encryptedFolder("first");
    const std::string name = encoded(folder, "first");
    const RunResult changed = change(folder, "first", "second");
    EXPECT_EQ(changed.status, 0) << changed.error;
    EXPECT_EQ(encoded(folder, "second"), name);
    EXPECT_EQ(statusOf(folder, "first"), 10);
}

TEST_F(PasswdTest, TwoChangesAndBackAgain)
{
    const std::string folder = bench.encryptedFolder("first");
    const std::string name = encoded(folder, "first");
    ASSERT_EQ(change(folder, "first", "second").status, 0);
    ASSERT_EQ(change(folder, "second", "third").status, 0);
    EXPECT_EQ(encoded(folder, "third"), name);
    EXPECT_EQ(statusOf(folder, "second"), 10);
    ASSERT_EQ(change(folder, "third", "first").status, 0);
    EXPECT_EQ(encoded(folder, "first"), name);
    EXPECT_EQ(backups().size(), 3U);
}

TEST_F(PasswdTest, FoldersOfOtherProgramsOpenWithTheNewPasswordToo)
{
    const std::string listed =
        shell("tar -tJf '" NIMBREL_TEST_DATA "/folders.tar.xz' | grep -o '^[^/]*' | sort -u")
            .output;
    std::istringstream names(listed);
    int tried = 0;
    for (std::string name; std::getline(names, name); ++tried) {
        const std::string folder = unpackedFolder(bench, name);
        const std::string before = encoded(folder, "nimbrel vectors");
        const RunResult changed = change(folder, "nimbrel vectors", "changed");
        EXPECT_EQ(changed.status, 0) << name << ' ' << changed.error;
        EXPECT_EQ(encoded(folder, "changed"), before) << name;
    }
    EXPECT_GT(tried, 3);
}

TEST_F(PasswdTest, TheBackupOpensWithTheOldPassword)
{
    const std::string folder = bench.encryptedFolder("first");
    const std::string name = encoded(folder, "first");
    const RunResult changed = change(folder, "first", "second");
    EXPECT_NE(changed.output.find(bench.backups()), std::string::npos) << changed.output;
    EXPECT_NE(changed.output.find("old password"), std::string::npos) << changed.output;
    ASSERT_EQ(backups().size(), 1U);
    files::copy_file(backups().front(), folder + "/.encfs6.xml",
                     files::copy_options::overwrite_existing);
    EXPECT_EQ(encoded(folder, "first"), name);
}

TEST_F(PasswdTest, AWrongPasswordChangesNothing)
{
    const std::string folder = bench.encryptedFolder("first");
    const std::string before = snapshot(folder);
    expectComplaint(change(folder, "wrong", "second"), 10, "Wrong password");
    EXPECT_EQ(snapshot(folder), before);
    EXPECT_FALSE(files::exists(bench.backups()));
}

TEST_F(PasswdTest, AnEmptyNewPasswordChangesNothing)
{
    const std::string folder = bench.encryptedFolder("first");
    const std::string before = snapshot(folder);
    expectComplaint(change(folder, "first", ""), 1, "Choose one");
    EXPECT_EQ(snapshot(folder), before);
}

TEST_F(PasswdTest, BothPasswordsComeFromStandardInput)
{
    const std::string folder = bench.encryptedFolder("first");
    const RunResult changed = bench.nimbrelctl(
        {"passwd", folder, "--password-file", "-", "--new-password-file", "-"}, "first\nsecond\n");
    EXPECT_EQ(changed.status, 0) << changed.error;
    EXPECT_EQ(statusOf(folder, "second"), 0);
}

TEST_F(PasswdTest, AFailedWriteChangesNothing)
{
    const std::string folder = bench.encryptedFolder("first");
    const std::string before = snapshot(folder);
    const RunResult failed =
        shell("(trap '' XFSZ; ulimit -f 0; exec '" + bench.program() + "' passwd '" + folder +
                  "' --password-file '" + bench.passwordFile("first") + "' --new-password-file '" +
                  bench.passwordFile("second") + "' 2>&1) | cat >&2",
              bench.runOptions());
    EXPECT_NE(failed.error.find("The password was not changed"), std::string::npos) << failed.error;
    EXPECT_EQ(snapshot(folder), before);
}

} // namespace

} // namespace nimbrel::test
