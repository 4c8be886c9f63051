#include "cli/Workbench.h"
#include "support/Files.h"

#include <gtest/gtest.h>
#include <regex>
#include <set>

namespace nimbrel::test {

namespace {

const std::string page = std::string(NIMBREL_SOURCE_FOLDER) + "/packaging/man/nimbrelctl.1";

// The page's words without its markup.
std::string plainPage()
{
    std::string text = std::regex_replace(readFile(page), std::regex(R"(\\-)"), "-");
    return std::regex_replace(text, std::regex(R"(\\~)"), " ");
}

std::set<std::string> optionsOf(const std::string &help)
{
    const std::regex option(R"(^  (?:(-[a-z]),)?(--?[a-z-]+))");
    std::set<std::string> options;
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);) {
        std::smatch found;
        if (std::regex_search(line, found, option))
            options.insert(found[2]);
    }
    return options;
}

TEST(ManPageTest, EveryOptionOfTheHelpStandsInIt)
{
    const Workbench bench;
    const std::string text = plainPage();
    std::size_t checked = 0;
    for (const char *command :
         {"create", "mount", "unmount", "passwd", "info", "encode", "decode"}) {
        EXPECT_NE(text.find("\n.SS " + std::string(command) + "\n"), std::string::npos);
        for (const std::string &option : optionsOf(bench.nimbrelctl({command, "--help"}).output)) {
            const std::regex whole(option + "(?![a-z-])");
            EXPECT_TRUE(std::regex_search(text, whole)) << option << " of " << command;
            ++checked;
        }
    }
    EXPECT_GE(checked, 20U); // or the help looks different and nothing was checked
}

TEST(ManPageTest, EveryExitStatusStandsInIt)
{
    const std::string text = plainPage();
    for (const char *status : {"0", "1", "2", "10", "11", "12"})
        EXPECT_NE(text.find("\n.B " + std::string(status) + "\n"), std::string::npos) << status;
}

TEST(ManPageTest, FormatsWithoutWarnings)
{
    if (shell("command -v groff").status != 0)
        GTEST_SKIP() << "groff isn't installed";
    const RunResult formatted = run({"groff", "-man", "-Tascii", "-ww", page});
    EXPECT_EQ(formatted.status, 0);
    EXPECT_EQ(formatted.error, "");
    EXPECT_NE(formatted.output.find("keep a folder encrypted and show it"), std::string::npos);
}

} // namespace

} // namespace nimbrel::test
