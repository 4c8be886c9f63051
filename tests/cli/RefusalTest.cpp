#include "cli/Workbench.h"
#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

namespace files = std::filesystem;

// Every command that opens an existing folder. A password is never asked for before the folder is
// judged: the command that would give it leaves a mark.
class RefusalTest : public testing::TestWithParam<std::string>
{
protected:
    [[nodiscard]] std::vector<std::string> commandOn(const std::string &folder,
                                                     const std::string &password) const
    {
        const std::string command =
            "touch '" + mark() + "'; cat '" + bench.passwordFile(password) + "'";
        if (GetParam() == "info")
            return {"info", folder};
        if (GetParam() == "mount")
            return {"mount", folder, bench.makeFolder("disk"), "--password-command", command};
        if (GetParam() == "passwd")
            return {"passwd",
                    folder,
                    "--password-command",
                    command,
                    "--new-password-file",
                    bench.passwordFile("new")};
        return {GetParam(), folder, "name", "--password-command", command};
    }
    [[nodiscard]] std::string mark() const { return bench / "was-asked"; }

    // Refused with `status` and `text`, nothing changed, no password asked.
    void expectRefused(const std::string &folder, int status, const std::string &text) const
    {
        const std::string before = files::is_directory(folder) ? snapshot(folder) : "";
        expectComplaint(bench.nimbrelctl(commandOn(folder, "a test's password")), status, text);
        EXPECT_EQ(files::is_directory(folder) ? snapshot(folder) : "", before);
        EXPECT_FALSE(files::exists(mark()));
    }
    // A good folder whose configuration was changed by a regular expression.
    [[nodiscard]] std::string folderWith(const std::string &pattern,
                                         const std::string &replacement) const
    {
        const std::string folder = bench.encryptedFolder();
        const std::string path = folder + "/.encfs6.xml";
        const std::string text = readFile(path);
        std::string changed = std::regex_replace(text, std::regex(pattern), replacement);
        EXPECT_NE(changed, text);
        writeFile(path, changed);
        return folder;
    }

    Workbench bench;
};

TEST_P(RefusalTest, AFolderThatIsNotThere)
{
    expectRefused(bench / "nowhere", 11, "No such file or directory");
}

TEST_P(RefusalTest, AFileInPlaceOfAFolder)
{
    writeFile(bench / "file", "");
    expectRefused(bench / "file", 11, "not a folder");
}

TEST_P(RefusalTest, AFolderWithoutAConfiguration)
{
    expectRefused(bench.makeFolder("plain"), 11, "not an encrypted folder");
}

TEST_P(RefusalTest, AConfigurationOfAnotherKind)
{
    expectRefused(folderWith("<uniqueIV>0", "<uniqueIV>1"), 11, "\"Unique IV\" not supported.");
    expectRefused(folderWith("<keySize>256", "<keySize>512"), 11, "Wrong key size: 512.");
    expectRefused(folderWith("<blockSize>4096", "<blockSize>1000"), 11, "Wrong block size: 1000.");
}

TEST_P(RefusalTest, AConfigurationThatNoMachineShouldActOn)
{
    expectRefused(folderWith("<kdfIterations>5000", "<kdfIterations>2000000000"), 11, "2000000000");
    expectRefused(folderWith("<blockSize>4096", "<blockSize>68719476736"), 11, "68719476736");
}

TEST_P(RefusalTest, AConfigurationWithoutAKey)
{
    expectRefused(folderWith("<encodedKeyData>[^]*</encodedKeyData>", ""), 11, "no key");
}

TEST_P(RefusalTest, ATruncatedConfiguration)
{
    const std::string folder = bench.encryptedFolder();
    const std::string text = readFile(folder + "/.encfs6.xml");
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{1}, text.size() / 2, text.size() - 20}) {
        writeFile(folder + "/.encfs6.xml", text.substr(0, length));
        expectRefused(folder, 11, "refused");
    }
}

TEST_P(RefusalTest, AnUnreadableFolder)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "root reads everything; OrdinaryUserTest has the same case for root";
    const std::string folder = bench.encryptedFolder();
    ::chmod(folder.c_str(), 0);
    expectComplaint(bench.nimbrelctl(commandOn(folder, "a test's password")), 11,
                    "Permission denied");
    ::chmod(folder.c_str(), 0755);
}

TEST_P(RefusalTest, AWrongPassword)
{
    if (GetParam() == "info")
        GTEST_SKIP() << "info needs no password";
    const std::string folder = bench.encryptedFolder();
    const std::string before = snapshot(folder);
    for (const std::string wrong : {"wrong", "", "a test's passwor", "a test's password "}) {
        const RunResult refused = bench.nimbrelctl(commandOn(folder, wrong));
        // Without FUSE a mount stops before the password.
        if (GetParam() == "mount" && refused.status == 1)
            GTEST_SKIP() << refused.error;
        expectComplaint(refused, 10, "Wrong password");
    }
    EXPECT_EQ(snapshot(folder), before);
}

INSTANTIATE_TEST_SUITE_P(Commands, RefusalTest,
                         testing::Values("mount", "passwd", "info", "encode", "decode"),
                         [](const auto &named) { return named.param; });

} // namespace

} // namespace nimbrel::test
