#include "cli/Workbench.h"
#include "support/Files.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>

namespace nimbrel::test {

namespace {

const std::string script = std::string(NIMBREL_SOURCE_FOLDER) + "/packaging/completion/nimbrelctl";

// What bash offers for the last of `words` (without the program's name).
std::vector<std::string> offers(const Workbench &bench, const std::string &words,
                                const std::vector<std::string> &environment = {})
{
    RunOptions options = bench.runOptions();
    options.environment.insert(options.environment.end(), environment.begin(), environment.end());
    const RunResult result =
        run({"bash", "--norc", "-c",
             "source '" + script + "' || exit 1; COMP_WORDS=(nimbrelctl " + words +
                 "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _nimbrelctl; "
                 "printf '%s\\n' \"${COMPREPLY[@]}\""},
            options);
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_EQ(result.error, "");
    std::vector<std::string> lines;
    std::istringstream stream(result.output);
    for (std::string line; std::getline(stream, line);)
        if (!line.empty())
            lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return lines;
}

using Offers = std::vector<std::string>;

TEST(CompletionTest, OffersTheCommands)
{
    const Workbench bench;
    EXPECT_EQ(offers(bench, "''"), (Offers{"--help", "--version", "create", "decode", "encode",
                                           "info", "mount", "passwd", "unmount"}));
    EXPECT_EQ(offers(bench, "un"), Offers{"unmount"});
}

TEST(CompletionTest, OffersTheOptionsOfTheCommand)
{
    const Workbench bench;
    EXPECT_EQ(offers(bench, "mount --r"), Offers{"--read-only"});
    EXPECT_EQ(offers(bench, "info --"), (Offers{"--help", "--json"}));
    EXPECT_EQ(offers(bench, "create --plain"), Offers{"--plain-names"});
    EXPECT_EQ(offers(bench, "passwd --new"), Offers{"--new-password-file"});
}

// Each option of the help is offered: the two lists don't drift apart.
TEST(CompletionTest, OffersEveryOptionOfTheHelp)
{
    const Workbench bench;
    for (const std::string command :
         {"create", "mount", "unmount", "passwd", "info", "encode", "decode"}) {
        const Offers offered = offers(bench, command + " -");
        const RunResult help =
            shell("'" + bench.program() + "' " + command + " --help | grep -o '^  -[^ ]*'");
        std::istringstream lines(help.output);
        for (std::string line; std::getline(lines, line);) {
            std::string option = line.substr(line.find_last_of(" ,") + 1);
            EXPECT_EQ(std::count(offered.begin(), offered.end(), option), 1)
                << command << ' ' << option;
        }
    }
}

TEST(CompletionTest, OffersValues)
{
    const Workbench bench;
    EXPECT_EQ(offers(bench, "create --key-size ''"), (Offers{"128", "192", "256"}));
    writeFile(bench / "secret file.txt", "");
    EXPECT_EQ(offers(bench, "mount --password-file sec"), Offers{"secret file.txt"});
}

TEST(CompletionTest, OffersFoldersAsOperands)
{
    const Workbench bench;
    (void)bench.makeFolder("Safe one");
    (void)bench.makeFolder("Safe two");
    writeFile(bench / "Safe file", "");
    EXPECT_EQ(offers(bench, "mount Saf"), (Offers{"Safe one", "Safe two"}));
    EXPECT_EQ(offers(bench, "mount --key-size 3 'Safe one' Saf"), (Offers{"Safe one", "Safe two"}));
    EXPECT_EQ(offers(bench, "info 'Safe one' Saf"), Offers{});
}

TEST(CompletionTest, OffersMountedDisksToUnmount)
{
    const Workbench bench;
    writeFile(bench / "mounts",
              "36 25 0:32 / /home/ann/My\\040Safe rw,nosuid shared:1 - fuse.nimbrel /home/x rw\n"
              "37 25 0:33 / /home/ann/Back\\134slash rw shared:1 - fuse.nimbrel /home/y rw\n"
              "38 25 0:34 / /home/ann/other rw shared:1 - fuse.sshfs host: rw\n");
    EXPECT_EQ(offers(bench, "unmount ''", {"NIMBREL_MOUNTINFO=" + (bench / "mounts")}),
              (Offers{"/home/ann/Back\\slash", "/home/ann/My Safe"}));
}

TEST(CompletionTest, OffersStoredPathsToDecode)
{
    const Workbench bench;
    const std::string folder = bench.makeFolder("enc");
    writeFile(folder + "/abc", "");
    writeFile(folder + "/-abd", "");
    EXPECT_EQ(offers(bench, "decode enc -- a"), Offers{"abc"});
}

} // namespace

} // namespace nimbrel::test
