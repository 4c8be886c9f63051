// A new encrypted folder on disk.
#include "config/ConfigurationBackup.h"
#include "config/NBNimbrelFSPreferences.h"
#include "fs/NBNimbrelFS.h"
#include "fs/OrdinaryRights.h"
#include "volume/VolumeFixture.h"

#include <QTranslator>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

const std::string informationName = "!IMPORTANT Nimbrel Information.txt";
const std::string information =
    "This is an encrypted folder which contains files encrypted with Nimbrel.\r\n\r\nIMPORTANT: Do "
    "NOT store plaintext files directly in this folder. They will NOT be encrypted!\r\n\r\nOnly "
    "files processed by the Nimbrel applications will be protected by Nimbrel. You want to encrypt "
    "your files? Simply store them in the Nimbrel applications and Nimbrel will encrypt "
    "them!\r\n\r\nWARNING: The .encfs6.xml file in this folder is a configuration file needed by "
    "Nimbrel. This file holds all information required for encrypting and decrypting your data. If "
    "the file gets lost or overwritten, you will lose access to your data!\r\n";

// Another language's string table.
class OtherLanguage final : public QTranslator
{
public:
    OtherLanguage() { QCoreApplication::installTranslator(this); }
    ~OtherLanguage() override { QCoreApplication::removeTranslator(this); }

    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char * /*context*/, const char *text,
                                    const char * /*disambiguation*/, int /*n*/) const override
    {
        if (QLatin1String(text) == QLatin1String("Nimbrel for Mac Manual"))
            return QStringLiteral("Handbuch");
        if (QString::fromUtf8(text).startsWith(QStringLiteral("This is an encrypted folder")))
            return QStringLiteral("Ein verschl\u00FCsselter Ordner.\r\n");
        return {};
    }
};

class FolderOnDiskTest : public VolumeFixture
{
protected:
    // A record for a folder that isn't there yet, or only as far as a test has made it.
    VolumePtr prepared(const std::string &name = "Safe")
    {
        VolumePtr volume = NBNimbrelVolume::withPath(desk.services, desk.path(name + ".nmc"));
        volume->setConfigPath(volume->path() + QStringLiteral("/.encfs6.xml"));
        volume->setLabel(qtText(name));
        volume->setEncodeFilenames(true);
        volume->setPassphrase(SecureBuffer::copyOf(rightPassword));
        return volume;
    }
    static std::vector<std::string> namesIn(const QString &folder)
    {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(coreText(folder)))
            names.push_back(entry.path().filename());
        return names;
    }
    // The folder's files as the configuration at `path` lets them be seen; null when the password
    // doesn't open it.
    static std::unique_ptr<NBNimbrelFS> viewWith(const std::string &path, const VolumePtr &volume)
    {
        NBPreferencesError error;
        const auto preferences = NBNimbrelFSPreferences().preferencesWithURL(path, &error);
        return preferences ? NBNimbrelFS::withRootPath(coreText(volume->path()), *preferences,
                                                       rightPassword)
                           : nullptr;
    }
    void putResource(const std::string &name, const std::string &text)
    {
        const fs::path path = desk.home() + "/resources/" + name;
        fs::create_directories(path.parent_path());
        writeFile(path, text);
    }
    [[nodiscard]] std::string resourceFolder() const { return desk.home() + "/resources"; }
};

TEST_F(FolderOnDiskTest, ANewFolderHoldsItsConfigurationAndTheInformationFile)
{
    const VolumePtr volume = prepared("deep/down/Safe");
    EXPECT_TRUE(volume->writeToDisk());
    EXPECT_THAT(namesIn(volume->path()),
                ::testing::UnorderedElementsAre(".encfs6.xml", informationName));
    EXPECT_EQ(readFile(coreText(volume->path()) + "/" + informationName), information);
    EXPECT_NE(viewWith(coreText(volume->configPath()), volume), nullptr);
    EXPECT_EQ(alertCount(), 0U);
}

TEST_F(FolderOnDiskTest, TheInformationFileIsWrittenInTheUsersLanguage)
{
    const OtherLanguage language;
    const VolumePtr volume = prepared();
    EXPECT_TRUE(volume->writeToDisk());
    EXPECT_EQ(readFile(coreText(volume->path()) + "/" + informationName),
              "Ein verschl\xC3\xBCsselter Ordner.\r\n");
}

TEST_F(FolderOnDiskTest, AFailureOfTheInformationFileLeavesAFolderThatMounts)
{
    const VolumePtr volume = prepared();
    fs::create_directories(coreText(volume->path()) + "/" + informationName + "/in the way");
    const SystemLogLines log;
    EXPECT_TRUE(volume->writeToDisk());
    EXPECT_TRUE(fs::is_directory(coreText(volume->path()) + "/" + informationName));
    EXPECT_EQ(log.count(qtText(informationName)), 1);
    EXPECT_EQ(alertCount(), 0U);
    EXPECT_TRUE(desk.mount(volume));
}

TEST_F(FolderOnDiskTest, ANewFolderWithPlainNamesHoldsTheConfigurationAlone)
{
    const VolumePtr volume = prepared();
    volume->setEncodeFilenames(false);
    EXPECT_TRUE(volume->writeToDisk());
    EXPECT_THAT(namesIn(volume->path()), ::testing::ElementsAre(".encfs6.xml"));
    EXPECT_TRUE(desk.mount(volume));
}

TEST_F(FolderOnDiskTest, AnExistingFolderKeepsItsFiles)
{
    const VolumePtr volume = prepared();
    fs::create_directories(coreText(volume->path()));
    writeFile(coreText(volume->path()) + "/mine.txt", "mine");
    EXPECT_TRUE(volume->writeToDisk());
    EXPECT_EQ(readFile(coreText(volume->path()) + "/mine.txt"), "mine");
}

TEST_F(FolderOnDiskTest, AReadOnlyParentGivesTheAlert)
{
    const std::string parent = desk.home() + "/locked";
    fs::create_directories(parent);
    fs::permissions(parent, fs::perms::owner_read | fs::perms::owner_exec);
    const VolumePtr volume = prepared("locked/Safe");
    {
        const OrdinaryRights ordinary;
        EXPECT_FALSE(volume->writeToDisk());
    }
    ASSERT_EQ(alertCount(), 1U);
    EXPECT_EQ(headline(), "Could not create the encrypted folder.");
    EXPECT_EQ(detail(), "");
    fs::permissions(parent, fs::perms::owner_all);
    EXPECT_TRUE(fs::is_empty(parent));
}

TEST_F(FolderOnDiskTest, AFileInTheFoldersPlaceGivesTheAlertAndStays)
{
    const VolumePtr volume = prepared();
    writeFile(coreText(volume->path()), "a file");
    EXPECT_FALSE(volume->writeToDisk());
    ASSERT_EQ(alertCount(), 1U);
    EXPECT_EQ(headline(), "Could not create the encrypted folder.");
    EXPECT_EQ(readFile(coreText(volume->path())), "a file");
}

TEST_F(FolderOnDiskTest, AConfigurationThatCannotBeWrittenTakesTheNewFolderAwayAndShowsNothing)
{
    const VolumePtr volume = prepared();
    volume->setConfigPath(desk.path("nowhere/configuration.xml"));
    EXPECT_FALSE(volume->writeToDisk());
    EXPECT_FALSE(fs::exists(coreText(volume->path())));
    EXPECT_EQ(alertCount(), 0U);
}

TEST_F(FolderOnDiskTest, AConfigurationThatCannotBeWrittenNeverTakesAFolderWithFilesAway)
{
    const VolumePtr volume = prepared();
    volume->setConfigPath(desk.path("nowhere/configuration.xml"));
    fs::create_directories(coreText(volume->path()) + "/folder");
    writeFile(coreText(volume->path()) + "/folder/mine.txt", "mine");
    EXPECT_FALSE(volume->writeToDisk());
    EXPECT_EQ(readFile(coreText(volume->path()) + "/folder/mine.txt"), "mine");
    EXPECT_EQ(alertCount(), 0U);
}

TEST_F(FolderOnDiskTest, ARecordWithoutAKeyWritesNothing)
{
    const VolumePtr volume = archived();
    const std::string before = readFile(coreText(volume->configPath()));
    volume->setPassphrase(SecureBuffer::copyOf(rightPassword));
    EXPECT_FALSE(volume->writePreferencesToDisk());
    EXPECT_EQ(readFile(coreText(volume->configPath())), before);
}

TEST_F(FolderOnDiskTest, AConfigurationGoesWhereTheRecordSays)
{
    const VolumePtr volume = prepared();
    volume->setConfigPath(desk.path("elsewhere.xml"));
    EXPECT_TRUE(volume->writeToDisk());
    EXPECT_THAT(namesIn(volume->path()), ::testing::ElementsAre(informationName));
    EXPECT_TRUE(desk.mount(volume));
    EXPECT_NE(viewWith(desk.home() + "/elsewhere.xml", volume), nullptr);
}

TEST_F(FolderOnDiskTest, AFolderThatHasAConfigurationIsNotMadeNew)
{
    const VolumePtr owner = desk.makeVolume("Safe", rightPassword);
    const std::string key = readFile(coreText(owner->configPath()));
    for (const char *name : {".encfs6.xml", "Keyfile.nmx"}) {
        const std::string path = coreText(owner->path()) + "/" + name;
        fs::rename(coreText(owner->configPath()), path);
        const VolumePtr stranger = prepared();
        EXPECT_FALSE(stranger->writeToDisk());
        EXPECT_EQ(readFile(path), key);
        EXPECT_EQ(alertCount(), 0U);
        owner->setConfigPath(qtText(path));
    }
}

TEST_F(FolderOnDiskTest, WithoutThatRefusalTheFoldersKeyWouldBeLostButForItsBackup)
{
    const VolumePtr owner = mounted();
    writeFile(onDisk(owner, "a.txt"), "of the owner");
    ASSERT_TRUE(desk.unmount(owner));
    const std::string configuration = coreText(owner->configPath());
    const std::string key = readFile(configuration);
    const VolumePtr stranger = prepared();
    stranger->setPassphrase(SecureBuffer::copyOf("a stranger's password"));
    ASSERT_TRUE(stranger->writePreferencesToDisk());

    EXPECT_EQ(viewWith(configuration, owner), nullptr);
    std::vector<fs::path> backups;
    for (const auto &entry : fs::directory_iterator(configurationBackupFolder()))
        backups.push_back(entry.path());
    ASSERT_EQ(backups.size(), 1U);
    EXPECT_EQ(readFile(backups[0]), key);
    fs::copy_file(backups[0], configuration, fs::copy_options::overwrite_existing);
    ASSERT_TRUE(desk.mount(owner));
    EXPECT_EQ(readFile(onDisk(owner, "a.txt")), "of the owner");
}

TEST_F(FolderOnDiskTest, AuxiliaryFilesLandOnTheDiskAndAreStoredEncrypted)
{
    putResource("en/Nimbrel for Mac Manual.pdf", "the whole manual");
    putResource("Getting Started.pdf", "the first steps");
    const VolumePtr volume = mounted();
    volume->writeAuxiliaryFilesToDisk();
    EXPECT_EQ(readFile(onDisk(volume, "Nimbrel for Mac Manual.pdf")), "the whole manual");
    EXPECT_EQ(readFile(onDisk(volume, "Getting Started.pdf")), "the first steps");
    ASSERT_TRUE(desk.unmount(volume));
    std::size_t stored = 0;
    for (const auto &entry : fs::directory_iterator(coreText(volume->path()))) {
        EXPECT_NE(entry.path().extension(), ".pdf");
        const std::string text = readFile(entry.path());
        EXPECT_EQ(text.find("manual"), std::string::npos) << entry.path();
        EXPECT_EQ(text.find("first steps"), std::string::npos) << entry.path();
        ++stored;
    }
    EXPECT_EQ(stored, 5U); // configuration, information, the trash file, the two
}

TEST_F(FolderOnDiskTest, ALanguageWithoutTheManualGetsTheEnglishOneUnderItsOwnName)
{
    const OtherLanguage language;
    desk.resources = Resources(qtText(resourceFolder()), {QStringLiteral("de")});
    putResource("en/Nimbrel for Mac Manual.pdf", "in English");
    putResource("en/Getting Started.pdf", "first steps, in English");
    const VolumePtr volume = mounted();
    volume->writeAuxiliaryFilesToDisk();
    EXPECT_EQ(readFile(onDisk(volume, "Handbuch.pdf")), "in English");
    EXPECT_EQ(readFile(onDisk(volume, "Getting Started.pdf")), "first steps, in English");
    EXPECT_FALSE(fs::exists(onDisk(volume, "Nimbrel for Mac Manual.pdf")));
}

TEST_F(FolderOnDiskTest, AManualInTheUsersLanguageGoesFirst)
{
    const OtherLanguage language;
    desk.resources = Resources(qtText(resourceFolder()), {QStringLiteral("de")});
    putResource("en/Nimbrel for Mac Manual.pdf", "in English");
    putResource("de/Nimbrel for Mac Manual.pdf", "auf Deutsch");
    const VolumePtr volume = mounted();
    volume->writeAuxiliaryFilesToDisk();
    EXPECT_EQ(readFile(onDisk(volume, "Handbuch.pdf")), "auf Deutsch");
}

TEST_F(FolderOnDiskTest, AMissingManualIsSkippedAndTheFirstStepsAreCopied)
{
    putResource("Getting Started.pdf", "the first steps");
    const VolumePtr volume = mounted();
    volume->writeAuxiliaryFilesToDisk();
    EXPECT_EQ(readFile(onDisk(volume, "Getting Started.pdf")), "the first steps");
    EXPECT_FALSE(fs::exists(onDisk(volume, "Nimbrel for Mac Manual.pdf")));
}

TEST_F(FolderOnDiskTest, AFileThatIsThereAlreadyIsNotOverwritten)
{
    putResource("Getting Started.pdf", "the first steps");
    const VolumePtr volume = mounted();
    writeFile(onDisk(volume, "Getting Started.pdf"), "with my notes");
    volume->writeAuxiliaryFilesToDisk();
    EXPECT_EQ(readFile(onDisk(volume, "Getting Started.pdf")), "with my notes");
    EXPECT_EQ(alertCount(), 0U);
}

} // namespace
} // namespace nimbrel::test
