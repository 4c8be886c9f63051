#include "assistants/NBSuccessAssistant.h"

#include "assistants/AssistantFixture.h"
#include "assistants/ConfigurationCopy.h"

#include <sys/stat.h>

namespace nimbrel::test {
namespace {

const QString told = QStringLiteral(
    "The configuration file has been successfully backed up!\n\nInformation about restoring it can "
    "be found in the manual or on our website.");

class NBSuccessAssistantTest : public PagesTest
{
protected:
    NBSuccessAssistantTest()
    {
        writeFile(config, content);
        page->setConfigPath(qtText(config));
        run();
    }

    [[nodiscard]] QPushButton &button() const { return *page->controls().backupButton; }
    // The questions that the panel asked.
    int backUp(const std::string &name)
    {
        button().click();
        return choose(sheetOf(*engine->window()), path(name));
    }
    [[nodiscard]] std::string home(const std::string &name) const
    {
        return desk.desk.home() + "/" + name;
    }
    void expectRefusal()
    {
        const QStringList shown = alerts();
        ASSERT_EQ(shown.size(), 1);
        EXPECT_TRUE(shown.first().contains(QLatin1String("configuration file itself")));
        EXPECT_TRUE(button().isEnabled());
        EXPECT_EQ(readFile(config), content);
    }

    const std::string config = desk.desk.home() + "/configuration";
    const std::string content = "<cfg>\r\n\t" + std::string(5000, 'k') + "\xff";
    std::shared_ptr<NBSuccessAssistant> page = add<NBSuccessAssistant>();
};

TEST_F(NBSuccessAssistantTest, TheStepStandsAloneAndIsClosed)
{
    EXPECT_EQ(page->orderedSteps(), QStringList{QStringLiteral("Congratulations!")});
    EXPECT_EQ(engine->nextButton()->text(), QStringLiteral("Close"));
    EXPECT_FALSE(engine->prevButton()->isEnabled());
    EXPECT_TRUE(page->controls().openVolumeButton->isChecked());
    EXPECT_TRUE(button().isEnabled());
    next();
    EXPECT_TRUE(engine->finished());
}

TEST_F(NBSuccessAssistantTest, ABackupIsACopyByteForByteThatOnlyItsOwnerReads)
{
    EXPECT_EQ(backUp("copy.xml"), 0);
    EXPECT_EQ(readFile(home("copy.xml")), content);
    EXPECT_EQ(readFile(config), content);
    struct stat copy = {};
    ASSERT_EQ(::stat(home("copy.xml").c_str(), &copy), 0);
    EXPECT_EQ(copy.st_mode & 07777U, 0600U);
    EXPECT_EQ(alerts(), QStringList{told});
}

TEST_F(NBSuccessAssistantTest, ThereIsOneBackupARun)
{
    backUp("copy.xml");
    EXPECT_FALSE(button().isEnabled());
    button().click();
    EXPECT_FALSE(hasSheet(*engine->window()));
}

TEST_F(NBSuccessAssistantTest, ThePanelSuggestsXmlAndTakesOtherTypes)
{
    button().click();
    const QFileDialog &sheet = sheetOf(*engine->window());
    EXPECT_EQ(sheet.acceptMode(), QFileDialog::AcceptSave);
    EXPECT_FALSE(sheet.testOption(QFileDialog::ReadOnly)); // it may make folders
    EXPECT_EQ(sheet.defaultSuffix(), QStringLiteral("xml"));
    EXPECT_EQ(sheet.nameFilters().size(), 2);
    choose(sheetOf(*engine->window()), path("copy"));
    EXPECT_EQ(readFile(home("copy.xml")), content);
}

TEST_F(NBSuccessAssistantTest, AnotherTypeIsKept)
{
    backUp("copy.txt");
    EXPECT_EQ(readFile(home("copy.txt")), content);
}

TEST_F(NBSuccessAssistantTest, ACancelDoesNothing)
{
    button().click();
    cancel(sheetOf(*engine->window()));
    EXPECT_EQ(alerts(), QStringList());
    EXPECT_TRUE(button().isEnabled());
}

TEST_F(NBSuccessAssistantTest, ABackupOverAFileReplacesIt)
{
    writeFile(home("copy.xml"), std::string(20000, 'x'));
    EXPECT_EQ(backUp("copy.xml"), 1);
    EXPECT_EQ(readFile(home("copy.xml")), content);
    EXPECT_EQ(alerts(), QStringList{told});
    EXPECT_FALSE(button().isEnabled());
}

TEST_F(NBSuccessAssistantTest, ALinkIsReplacedAndItsTargetKept)
{
    writeFile(home("target"), "kept");
    std::filesystem::create_symlink(home("target"), home("copy.xml"));
    backUp("copy.xml");
    EXPECT_FALSE(std::filesystem::is_symlink(home("copy.xml")));
    EXPECT_EQ(readFile(home("copy.xml")), content);
    EXPECT_EQ(readFile(home("target")), "kept");
}

TEST_F(NBSuccessAssistantTest, AFailedCopyStillReportsSuccessAndThenTheTruth)
{
    std::filesystem::remove(config);
    backUp("copy.xml");
    const QStringList shown = alerts();
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[0], told);
    EXPECT_TRUE(shown[1].contains(QLatin1String("could not be made")));
    EXPECT_TRUE(shown[1].contains(qtText(config)));
    EXPECT_FALSE(std::filesystem::exists(home("copy.xml")));
    EXPECT_TRUE(button().isEnabled());
}

TEST_F(NBSuccessAssistantTest, AfterAFailedCopyAnotherPlaceCanBeTaken)
{
    std::filesystem::rename(config, config + ".away");
    backUp("copy.xml");
    std::filesystem::rename(config + ".away", config);
    backUp("other.xml");
    EXPECT_EQ(readFile(home("other.xml")), content);
    EXPECT_EQ(alerts().last(), told);
    EXPECT_FALSE(button().isEnabled());
}

TEST_F(NBSuccessAssistantTest, AnOlderBackupOutlivesAFailedCopy)
{
    writeFile(home("copy.xml"), "older backup");
    std::filesystem::remove(config);
    backUp("copy.xml");
    EXPECT_EQ(readFile(home("copy.xml")), "older backup");
}

TEST_F(NBSuccessAssistantTest, APlaceThatIsntThereIsToldAfterwards)
{
    backUp("missing/copy.xml");
    const QStringList shown = alerts();
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[0], told);
    EXPECT_TRUE(shown[1].contains(path("missing")));
    EXPECT_TRUE(button().isEnabled());
}

TEST_F(NBSuccessAssistantTest, AFailureLeavesNoFileBehind)
{
    std::filesystem::create_directories(home("place/copy.xml"));
    EXPECT_TRUE(copyConfiguration(config, home("place/copy.xml")).has_value());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(home("place")), {}), 1);
}

TEST_F(NBSuccessAssistantTest, TheOnlyKeyIsntReplacedByItself)
{
    std::filesystem::rename(config, home("key.xml"));
    page->setConfigPath(path("key.xml"));
    backUp("key.xml");
    EXPECT_EQ(readFile(home("key.xml")), content);
    writeFile(config, content);
    expectRefusal();
}

TEST_F(NBSuccessAssistantTest, ALinkToTheConfigurationIsNoBackup)
{
    std::filesystem::create_symlink(config, home("soft.xml"));
    backUp("soft.xml");
    expectRefusal();
    EXPECT_TRUE(std::filesystem::is_symlink(home("soft.xml")));
    std::filesystem::create_hard_link(config, home("hard.xml"));
    backUp("hard.xml");
    expectRefusal();
}

} // namespace
} // namespace nimbrel::test
