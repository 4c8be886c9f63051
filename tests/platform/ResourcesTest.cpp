#include "platform/Resources.h"

#include "support/Files.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

class ResourcesTest : public testing::Test
{
protected:
    void make(const std::string &name)
    {
        const std::filesystem::path path = _temp / name;
        std::filesystem::create_directories(path.parent_path());
        writeFile(path.string(), "");
    }
    // The file that is found, below the folder; "none".
    std::string found(const QStringList &languages)
    {
        const Resources resources(QString::fromStdString(_temp.path()), languages);
        return below(resources.path(u"Manual"_qs, u"pdf"_qs));
    }
    std::string below(const std::optional<QString> &path) const
    {
        return path ? path->toStdString().substr(_temp.path().size() + 1) : "none";
    }

    TempFolder _temp;
};

TEST_F(ResourcesTest, TheUsersLanguagesComeInTheirOrder)
{
    make("de/Manual.pdf");
    make("fr/Manual.pdf");
    EXPECT_EQ(found({u"fr"_qs, u"de"_qs}), "fr/Manual.pdf");
    EXPECT_EQ(found({u"es"_qs, u"de"_qs, u"fr"_qs}), "de/Manual.pdf");
}

TEST_F(ResourcesTest, ALanguageStandsForItsCountries)
{
    make("de/Manual.pdf");
    EXPECT_EQ(found({u"de_AT"_qs}), "de/Manual.pdf");
    EXPECT_EQ(found({u"de-AT"_qs}), "de/Manual.pdf");
    make("de_AT/Manual.pdf");
    EXPECT_EQ(found({u"de_AT"_qs}), "de_AT/Manual.pdf");
    EXPECT_EQ(found({u"de-AT"_qs}), "de_AT/Manual.pdf");
    EXPECT_EQ(found({u"de_DE"_qs}), "de/Manual.pdf");
}

TEST_F(ResourcesTest, AScriptIsLeftOutLast)
{
    make("zh/Manual.pdf");
    EXPECT_EQ(found({u"zh-Hant-TW"_qs}), "zh/Manual.pdf");
    make("zh_Hant/Manual.pdf");
    EXPECT_EQ(found({u"zh-Hant-TW"_qs}), "zh_Hant/Manual.pdf");
}

TEST_F(ResourcesTest, WhatIsNotLocalisedComesLast)
{
    make("Manual.pdf");
    EXPECT_EQ(found({u"de"_qs}), "Manual.pdf");
    EXPECT_EQ(found({}), "Manual.pdf");
    make("de/Manual.pdf");
    EXPECT_EQ(found({u"de"_qs}), "de/Manual.pdf");
}

TEST_F(ResourcesTest, WhatIsMissingIsNothing)
{
    make("en/Manual.pdf"); // nobody asked for English
    make("de/Manual.txt");
    EXPECT_EQ(found({u"de"_qs}), "none");
}

TEST_F(ResourcesTest, ALocalizationMayBeAskedFor)
{
    make("en/Manual.pdf");
    make("Manual.pdf");
    const Resources resources(QString::fromStdString(_temp.path()), {u"de"_qs});
    EXPECT_EQ(below(resources.path(u"Manual"_qs, u"pdf"_qs, u"en"_qs)), "en/Manual.pdf");
    EXPECT_EQ(below(resources.path(u"Manual"_qs, u"pdf"_qs, u"de"_qs)), "none");
}

// Sets one variable, and puts it back.
class Variable final
{
public:
    Variable(const char *name, const std::string &value) : _name(name), _before(qgetenv(name))
    {
        qputenv(name, value.c_str());
    }
    ~Variable() { _before.isNull() ? qunsetenv(_name) : qputenv(_name, _before); }
    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;

private:
    const char *_name;
    QByteArray _before;
};

TEST_F(ResourcesTest, TheVariableNamesTheFolder)
{
    const Variable variable("NIMBREL_RESOURCES", _temp.path());
    make("Manual.pdf");
    EXPECT_EQ(below(Resources().path(u"Manual"_qs, u"pdf"_qs)), "Manual.pdf");
}

TEST_F(ResourcesTest, TheLocaleNamesTheLanguages)
{
    const Variable folder("NIMBREL_RESOURCES", _temp.path());
    const Variable all("LC_ALL", "de_AT.UTF-8");
    const Variable language("LANGUAGE", "");
    make("de/Manual.pdf");
    make("Manual.pdf");
    EXPECT_EQ(below(Resources().path(u"Manual"_qs, u"pdf"_qs)), "de/Manual.pdf");
}

// A copy of this program, installed in the temporary folder, runs the next test alone.
TEST_F(ResourcesTest, TheFolderLiesBesideTheProgramsOwn)
{
    const std::string copy = _temp.makeFolder("bin") + "/program";
    std::filesystem::copy_file("/proc/self/exe", copy);
    make("share/nimbrel/Manual.pdf");
    const RunResult result =
        run({copy, "--gtest_filter=ResourcesProgramTest.*"},
            {.environment = {"NIMBREL_RESOURCES=",
                             "NIMBREL_TEST_WANTED=" + (_temp / "share/nimbrel/Manual.pdf")}});
    EXPECT_EQ(result.status, 0) << result.output << result.error;
    EXPECT_NE(result.output.find("[  PASSED  ] 1 test"), std::string::npos) << result.output;
}

TEST(ResourcesProgramTest, OnlyAnInstalledProgramHasItsResources)
{
    const Variable variable("NIMBREL_RESOURCES", "");
    const QString wanted = qEnvironmentVariable("NIMBREL_TEST_WANTED"); // set in the copy alone
    EXPECT_EQ(Resources().path(u"Manual"_qs, u"pdf"_qs).value_or(QString()), wanted);
}

} // namespace
} // namespace nimbrel::test
