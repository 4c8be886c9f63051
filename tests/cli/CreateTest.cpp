#include "cli/Workbench.h"
#include "config/InformationFile.h"
#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

namespace nimbrel::test {

namespace {

namespace files = std::filesystem;

std::vector<std::string> createWith(const Workbench &bench, std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(),
                     {"create", "--password-file", bench.passwordFile("a good one")});
    return arguments;
}

TEST(CreateTest, MakesAFolderAndTellsTheNextCommand)
{
    const Workbench bench;
    const std::string folder = bench / "My Safe";
    const RunResult made = bench.nimbrelctl(createWith(bench, {folder}));
    EXPECT_EQ(made.status, 0) << made.error;
    EXPECT_EQ(made.error, "");
    EXPECT_NE(made.output.find("nimbrelctl mount '" + folder + "' MOUNTPOINT"), std::string::npos)
        << made.output;
    EXPECT_TRUE(files::exists(folder + "/.encfs6.xml"));
    EXPECT_EQ(readFile(folder + "/" + std::string(informationFileName)), informationText());
}

TEST(CreateTest, PlainNamesLeaveTheConfigurationAlone)
{
    const Workbench bench;
    const std::string folder = bench.encryptedFolder("a good one", {"--plain-names"});
    std::vector<std::string> names;
    for (const files::directory_entry &entry : files::directory_iterator(folder))
        names.push_back(entry.path().filename());
    EXPECT_EQ(names, std::vector<std::string>{".encfs6.xml"});
}

TEST(CreateTest, TakesAnEmptyFolder)
{
    const Workbench bench;
    const std::string folder = bench.makeFolder("there");
    EXPECT_EQ(bench.nimbrelctl(createWith(bench, {folder})).status, 0);
    EXPECT_TRUE(files::exists(folder + "/.encfs6.xml"));
}

TEST(CreateTest, TakesAPathRelativeToTheWorkingFolder)
{
    const Workbench bench;
    EXPECT_EQ(bench.nimbrelctl(createWith(bench, {"a/b/c/"})).status, 0);
    EXPECT_TRUE(files::exists(bench / "a/b/c/.encfs6.xml"));
}

TEST(CreateTest, AFolderNamedLikeACommandIsAFolder)
{
    const Workbench bench;
    EXPECT_EQ(bench.nimbrelctl(createWith(bench, {"create"})).status, 0);
    EXPECT_TRUE(files::exists(bench / "create/.encfs6.xml"));
}

TEST(CreateTest, RefusesAFolderThatHoldsSomething)
{
    const Workbench bench;
    const std::string folder = bench.makeFolder("full");
    writeFile(folder + "/mine", "mine");
    const std::string before = snapshot(folder);
    expectComplaint(bench.nimbrelctl(createWith(bench, {folder})), 1, "not empty");
    EXPECT_EQ(snapshot(folder), before);
}

TEST(CreateTest, RefusesAnEncryptedFolder)
{
    const Workbench bench;
    const std::string folder = bench.encryptedFolder();
    const std::string before = snapshot(folder);
    expectComplaint(bench.nimbrelctl(createWith(bench, {folder})), 1, "not empty");
    EXPECT_EQ(snapshot(folder), before);
}

TEST(CreateTest, RefusesAFileInThePlace)
{
    const Workbench bench;
    writeFile(bench / "file", "mine");
    expectComplaint(bench.nimbrelctl(createWith(bench, {bench / "file"})), 1, "not a folder");
    expectComplaint(bench.nimbrelctl(createWith(bench, {bench / "file/below"})), 1,
                    "Not a directory");
    EXPECT_EQ(readFile(bench / "file"), "mine");
}

TEST(CreateTest, RefusesAnEmptyPassword)
{
    const Workbench bench;
    expectComplaint(
        bench.nimbrelctl({"create", bench / "new", "--password-file", bench.passwordFile("")}), 1,
        "Choose one");
    EXPECT_FALSE(files::exists(bench / "new"));
}

TEST(CreateTest, RefusesSizesThatCanNotBe)
{
    const Workbench bench;
    for (const char *size :
         {"0", "-16", "8", "1000", "67108880", "4096x", "", "99999999999999999999"})
        expectComplaint(bench.nimbrelctl(createWith(bench, {bench / "new", "--block-size", size})),
                        2, "--block-size");
    for (const char *size : {"0", "64", "255", "512", "x"})
        expectComplaint(bench.nimbrelctl(createWith(bench, {bench / "new", "--key-size", size})), 2,
                        "--key-size");
    EXPECT_FALSE(files::exists(bench / "new"));
}

TEST(CreateTest, EveryKeySizeAndBlockSizeOpensAgain)
{
    const Workbench bench;
    const std::string password = bench.passwordFile("one for all");
    for (const std::string key : {"128", "192", "256"})
        for (const std::string block : {"16", "1024", "4096", "65536", "67108864"}) {
            const std::string folder =
                bench.encryptedFolder("one for all", {"--key-size", key, "--block-size", block});
            const RunResult encoded =
                bench.nimbrelctl({"encode", folder, "a/name", "--password-file", password});
            ASSERT_EQ(encoded.status, 0) << key << ' ' << block << ' ' << encoded.error;
            const std::string stored = encoded.output.substr(0, encoded.output.size() - 1);
            EXPECT_EQ(
                bench.nimbrelctl({"decode", folder, "--password-file", password, "--", stored})
                    .output,
                "a/name\n");
            const std::string told = bench.nimbrelctl({"info", folder}).output;
            EXPECT_NE(told.find(key + " bits"), std::string::npos) << told;
            EXPECT_NE(told.find(" " + block + " bytes"), std::string::npos) << told;
        }
}

TEST(CreateTest, TwoFoldersHaveDifferentKeys)
{
    const Workbench bench;
    EXPECT_NE(readFile(bench.encryptedFolder("same") + "/.encfs6.xml"),
              readFile(bench.encryptedFolder("same") + "/.encfs6.xml"));
}

// No byte can be written (a full disk looks the same): what was made goes again, what was there
// stays.
TEST(CreateTest, AFailedWriteLeavesNothingBehind)
{
    const Workbench bench;
    const std::string existing = bench.makeFolder("existing");
    const std::string password = bench.passwordFile("a good one");
    for (const std::string &folder : {bench / "new/below/deep", existing}) {
        const RunResult failed =
            shell("(trap '' XFSZ; ulimit -f 0; exec '" + bench.program() + "' create '" + folder +
                      "' --password-file '" + password + "' 2>&1) | cat >&2",
                  bench.runOptions());
        EXPECT_NE(failed.error.find("nimbrelctl: "), std::string::npos) << failed.error;
        EXPECT_NE(failed.error.find("File too large"), std::string::npos) << failed.error;
    }
    EXPECT_FALSE(files::exists(bench / "new"));
    EXPECT_TRUE(files::is_empty(existing));
}

TEST(CreateTest, AFullDiskLeavesNothingBehind)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can mount a small disk";
    const Workbench bench;
    const std::string disk = bench.makeFolder("disk");
    // In a mount namespace of its own the small disk goes with the shell.
    const RunResult result =
        run({"unshare", "-m", "sh", "-c",
             "mount -t tmpfs -o size=64k none \"$1\" || exit 77; "
             "cat /dev/zero >\"$1/filler\" 2>/dev/null; \"$2\" create \"$1/new\" --password-file "
             "\"$3\"; code=$?; ls -A \"$1\"; exit $code",
             "sh", disk, bench.program(), bench.passwordFile("a good one")},
            bench.runOptions());
    if (result.status == 77 || result.error.starts_with("unshare: "))
        GTEST_SKIP() << "no mount namespaces here";
    EXPECT_EQ(result.status, 1) << result.error;
    EXPECT_NE(result.error.find("No space left on device"), std::string::npos) << result.error;
    EXPECT_EQ(result.output, "filler\n");
}

} // namespace

} // namespace nimbrel::test
