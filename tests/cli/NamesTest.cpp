#include "cli/Workbench.h"
#include "support/Files.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>

namespace nimbrel::test {

namespace {

namespace files = std::filesystem;

constexpr const char *vectorsPassword = "nimbrel vectors";

std::vector<std::string> linesOf(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// Relative paths of all items, sorted.
std::vector<std::string> pathsIn(const std::string &folder)
{
    std::vector<std::string> paths;
    for (const files::directory_entry &entry : files::recursive_directory_iterator(folder))
        paths.push_back(entry.path().lexically_relative(folder));
    std::sort(paths.begin(), paths.end());
    return paths;
}

class NamesTest : public testing::Test
{
protected:
    [[nodiscard]] RunResult translate(const std::string &command, const std::string &folder,
                                      std::vector<std::string> paths,
                                      const std::string &password = vectorsPassword) const
    {
        std::vector<std::string> arguments{command, folder, "--password-file",
                                           bench.passwordFile(password), "--"};
        arguments.insert(arguments.end(), paths.begin(), paths.end());
        return bench.nimbrelctl(arguments);
    }

    Workbench bench;
};

TEST_F(NamesTest, DecodesAFolderOfVectorsAndEncodesItBack)
{
    const std::string folder = unpackedFolder(bench, "stream-128-1024.nmc");
    std::vector<std::string> stored = pathsIn(folder);
    std::erase(stored, ".encfs6.xml");
    const RunResult decoded = translate("decode", folder, stored);
    EXPECT_EQ(decoded.status, 0) << decoded.error;
    std::vector<std::string> plain = linesOf(decoded.output);
    const RunResult encoded = translate("encode", folder, plain);
    EXPECT_EQ(linesOf(encoded.output), stored) << encoded.error;

    const std::string tree = bench.makeFolder("plain");
    ASSERT_EQ(run({"tar", "-xf", dataFile("plain.tar"), "-C", tree}).status, 0);
    std::sort(plain.begin(), plain.end());
    EXPECT_EQ(plain, pathsIn(tree));
}

TEST_F(NamesTest, PlainNamesStayAsTheyAre)
{
    const std::string folder = unpackedFolder(bench, "null-256-4096.nmc");
    for (const char *command : {"encode", "decode"})
        EXPECT_EQ(translate(command, folder, {"a.txt", "/Reports/x"}).output, "a.txt\nReports/x\n");
}

TEST_F(NamesTest, ALeadingSlashAndSuperfluousPartsDoNotMatter)
{
    const std::string folder = bench.encryptedFolder("p");
    const std::vector<std::string> lines =
        linesOf(translate("encode", folder, {"a/b", "/a/b", "//a//b/", "./a/./b"}, "p").output);
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), lines[0]), 4);
    EXPECT_EQ(translate("encode", folder, {"/"}, "p").output, ".\n");
}

TEST_F(NamesTest, TheWayOutOfTheFolderIsNoPath)
{
    const std::string folder = bench.encryptedFolder("p");
    expectComplaint(translate("encode", folder, {"a/../../b"}, "p"), 1, "leads out");
}

TEST_F(NamesTest, NamesThatAnArgumentParserMightMistake)
{
    const std::string folder = bench.encryptedFolder("p");
    for (const std::string name :
         {"-o", "--json", "[a,b]", "++", "{}", "%%", "create", "'q'", "\"q\"", "a=b", "@x", " "}) {
        const RunResult encoded = translate("encode", folder, {name}, "p");
        ASSERT_EQ(encoded.status, 0) << name << encoded.error;
        ASSERT_EQ(linesOf(encoded.output).size(), 1U) << name;
        EXPECT_EQ(translate("decode", folder, {linesOf(encoded.output)[0]}, "p").output,
                  name + "\n");
    }
}

TEST_F(NamesTest, AForeignNameIsNamedAndTheOthersAreStillDecoded)
{
    const std::string folder = unpackedFolder(bench, "stream-128-1024.nmc");
    const RunResult decoded = translate("decode", folder,
                                        {"!IMPORTANT Nimbrel Information.txt", "WaHCmbVE13Po",
                                         "WaHCmbVE13Po/notes.txt", ".encfs6.xml"});
    EXPECT_EQ(decoded.status, 1);
    EXPECT_EQ(linesOf(decoded.output).size(), 1U) << decoded.output;
    const std::vector<std::string> complaints = linesOf(decoded.error);
    ASSERT_EQ(complaints.size(), 3U) << decoded.error;
    EXPECT_EQ(complaints[1], "nimbrelctl: notes.txt in WaHCmbVE13Po/notes.txt is not an encrypted "
                             "name of this folder.");
}

TEST_F(NamesTest, TheLongestNameThatFitsHas189Bytes)
{
    const std::string folder = bench.encryptedFolder("p");
    EXPECT_EQ(translate("encode", folder, {std::string(189, 'n')}, "p").status, 0);
    expectComplaint(translate("encode", folder, {std::string(190, 'n')}, "p"), 1, "too long");
    const std::string plain = bench.encryptedFolder("p", {"--plain-names"});
    EXPECT_EQ(translate("encode", plain, {std::string(255, 'n')}, "p").status, 0);
    expectComplaint(translate("encode", plain, {std::string(256, 'n')}, "p"), 1, "too long");
}

TEST_F(NamesTest, ANameThatIsNoUtf8IsRefused)
{
    const std::string folder = bench.encryptedFolder("p");
    expectComplaint(translate("encode", folder, {"a\xff"}, "p"), 1,
                    "a\\xff in a\\xff is not UTF-8");
}

TEST_F(NamesTest, NullEndsEachResultWithAZeroByte)
{
    const std::string folder = bench.encryptedFolder("p");
    const std::string stored = translate("encode", folder, {"two\nlines"}, "p").output;
    const RunResult decoded =
        bench.nimbrelctl({"decode", "--null", folder, "--password-file", bench.passwordFile("p"),
                          "--", stored.substr(0, stored.size() - 1)});
    EXPECT_EQ(decoded.output, std::string("two\nlines\0", 10));
}

} // namespace

} // namespace nimbrel::test
