#include "cli/Workbench.h"

#include <gtest/gtest.h>

namespace nimbrel::test {

namespace {

TEST(InfoTest, TellsAboutAFolderWithoutAPassword)
{
    const Workbench bench;
    const std::string folder = unpackedFolder(bench, "stream-128-1024.nmc");
    const RunResult told = bench.nimbrelctl({"info", folder});
    EXPECT_EQ(told.status, 0) << told.error;
    EXPECT_EQ(told.output, "Folder:         " + folder +
                               "\n"
                               "Configuration:  " +
                               folder +
                               "/.encfs6.xml\n"
                               "Cipher:         ssl/aes\n"
                               "Cipher version: 3.0\n"
                               "Key size:       128 bits\n"
                               "Block size:     1024 bytes\n"
                               "Names:          encrypted\n"
                               "Name algorithm: nameio/stream\n"
                               "Name version:   2.1\n"
                               "Key iterations: 1000\n"
                               "Salt:           20 bytes\n");
}

TEST(InfoTest, TellsTheFoldersOwnSaltAndIterations)
{
    const Workbench bench;
    const std::string listed =
        shell("tar -tJf '" NIMBREL_TEST_DATA "/folders.tar.xz' | grep -o '^[^/]*longsalt[^/]*' | "
              "head -n 1")
            .output;
    ASSERT_NE(listed, "");
    const std::string folder = unpackedFolder(bench, listed.substr(0, listed.size() - 1));
    const std::string told = bench.nimbrelctl({"info", folder}).output;
    EXPECT_NE(told.find("Salt:           32 bytes\n"), std::string::npos) << told;
    EXPECT_NE(told.find("Key iterations: 180000\n"), std::string::npos) << told;
}

TEST(InfoTest, JsonIsReadByOthers)
{
    const Workbench bench;
    const std::string password = bench.passwordFile("p");
    const std::string odd = bench / "a \"quoted\"\nänd \\ odd";
    ASSERT_EQ(
        bench.nimbrelctl({"create", odd, "--plain-names", "--password-file", password}).status, 0);
    const RunResult json = bench.nimbrelctl({"info", "--json", odd});
    EXPECT_EQ(json.status, 0) << json.error;
    const RunResult read = run({"python3", "-c",
                                "import json,sys\n"
                                "d = json.load(sys.stdin)\n"
                                "print(d['folder'], d['keySize'] + 0, d['blockSize'] + 0, "
                                "d['names'], d['cipher'], d['iterations'] + 0)"},
                               {.input = json.output, .environment = {"PYTHONIOENCODING=utf-8"}});
    EXPECT_EQ(read.error, "");
    EXPECT_EQ(read.output, odd + " 256 4096 plain ssl/aes 5000\n");
}

TEST(InfoTest, JsonOfAPathThatIsNoUtf8IsStillJson)
{
    const Workbench bench;
    const std::string odd = bench / "\xff\xfe";
    ASSERT_EQ(bench.nimbrelctl({"create", odd, "--password-file", bench.passwordFile("p")}).status,
              0);
    const RunResult json = bench.nimbrelctl({"info", "--json", odd});
    EXPECT_EQ(
        run({"python3", "-c", "import json,sys; json.load(sys.stdin)"}, {.input = json.output})
            .error,
        "");
}

TEST(InfoTest, ControlCharactersOfAPathAreShownEscaped)
{
    const Workbench bench;
    const std::string odd = bench / "a\x1b[31mred\nname";
    ASSERT_EQ(bench.nimbrelctl({"create", odd, "--password-file", bench.passwordFile("p")}).status,
              0);
    const RunResult told = bench.nimbrelctl({"info", odd});
    EXPECT_NE(told.output.find("/a\\x1b[31mred\\nname\n"), std::string::npos) << told.output;
    expectComplaint(bench.nimbrelctl({"info", odd + "\n"}), 11, "red\\nname\\n");
}

} // namespace

} // namespace nimbrel::test
