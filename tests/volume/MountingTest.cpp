#include "config/ConfigurationText.h"
#include "platform/SystemFacts.h"
#include "volume/VolumeFixture.h"

#include <QRegularExpression>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

constexpr const char *supportPage =
    "/customer/portal/articles/1024260-what-is-the-bad-volume-coniguration-error-all-about";

class MountingTest : public VolumeFixture
{
protected:
    // A mount that stops: nobody is told, and the volume isn't busy.
    void expectStop(const VolumePtr &volume)
    {
        volume->mount(into(results));
        EXPECT_TRUE(hasIdled(volume));
        EXPECT_THAT(results, ::testing::IsEmpty());
        EXPECT_FALSE(volume->isMounted());
    }
    // The handler of the mount that stopped hears of this one.
    void expectNextMountTellsItsHandler(const VolumePtr &volume)
    {
        volume->mount();
        EXPECT_TRUE(eventLoopUntil([&] { return !results.empty(); }));
        EXPECT_THAT(results, ::testing::ElementsAre(true));
    }

    // Puts `to` in the place of the first `from` in the folder's configuration.
    static void edit(const VolumePtr &volume, const std::string &from, const std::string &to)
    {
        const std::string path = coreText(volume->configPath());
        std::string text = readFile(path);
        const std::size_t place = text.find(from);
        ASSERT_NE(place, std::string::npos) << from;
        writeFile(path, text.replace(place, from.size(), to));
    }
    static void setElement(const VolumePtr &volume, std::string_view name, std::string_view value)
    {
        const std::string path = coreText(volume->configPath());
        const auto text = textWithElement(readFile(path), name, value);
        ASSERT_TRUE(text) << name;
        writeFile(path, *text);
    }

    std::vector<bool> results;
};

TEST_F(MountingTest, WhatIsWrittenToTheDiskIsReadAfterTheNextMountAndStoredEncrypted)
{
    const VolumePtr volume = mounted();
    EXPECT_TRUE(volume->isMounted());
    writeFile(onDisk(volume, "letter.txt"), "dear reader");
    ASSERT_TRUE(desk.unmount(volume));

    for (const auto &entry : fs::recursive_directory_iterator(coreText(volume->path()))) {
        EXPECT_NE(entry.path().filename(), "letter.txt");
        EXPECT_EQ(readFile(entry.path()).find("dear reader"), std::string::npos);
    }
    ASSERT_TRUE(desk.mount(volume));
    EXPECT_EQ(readFile(onDisk(volume, "letter.txt")), "dear reader");
    EXPECT_EQ(alertCount(), 0U);
}

TEST_F(MountingTest, ASecondMountMeanwhileOnlyLogsBusyAndItsHandlerReplacesTheFirst)
{
    const SystemLogLines log;
    const VolumePtr volume = ready();
    std::vector<bool> first;
    volume->mount(into(first));
    volume->mount(into(results));
    EXPECT_TRUE(volume->isBusy());
    ASSERT_TRUE(eventLoopUntil([&] { return !results.empty(); }));
    EXPECT_THAT(results, ::testing::ElementsAre(true));
    EXPECT_THAT(first, ::testing::IsEmpty());
    EXPECT_EQ(log.count(QStringLiteral("Safe: Busy...")), 1);
}

TEST_F(MountingTest, LogLinesNameTheOperationTheLineAndTheLabel)
{
    const SystemLogLines log;
    const VolumePtr volume = ready();
    volume->mount(into(results));
    volume->mount(into(results));
    ASSERT_TRUE(eventLoopUntil([&] { return !results.empty(); }));
    ASSERT_TRUE(desk.unmount(volume));
    const QString form = QStringLiteral("^-\\[NBNimbrelVolume %1\\] \\[Line \\d+\\] Safe: %2$");
    const auto countOf = [&](const char *method, const char *what) {
        const QRegularExpression line(form.arg(QLatin1String(method), QLatin1String(what)));
        return log.lines().filter(line).size();
    };
    EXPECT_EQ(countOf("mount", "Mounting\\.\\.\\."), 2);
    EXPECT_EQ(countOf("mount", "Busy\\.\\.\\."), 1);
    EXPECT_EQ(countOf("unmount", "Unmounting\\.\\.\\."), 1);
}

TEST_F(MountingTest, ThePrefixPutsTheUsersNameBeforeTheLabel)
{
    desk.preferences.setValue(preferencesKey::volumePrefix, true);
    const VolumePtr volume = mounted();
    const std::string expected =
        desk.home() + "/Volumes/" + coreText(systemFacts::userName()) + "-Safe";
    EXPECT_EQ(coreText(volume->mountPoint()), expected);
    EXPECT_EQ(mountedAt(fs::canonical(expected)), "fuse.nimbrel");
}

TEST_F(MountingTest, SpotlightPutsLocalAndAllowOtherIntoTheOptionsOnceEach)
{
    const VolumePtr volume = archived();
    volume->setSpotlight(true);
    for (const bool isLocal : {false, true})
        for (const bool allowsAll : {false, true}) {
            volume->setLocal(isLocal);
            volume->setAllowAll(allowsAll);
            const QStringList options = volume->mountOptions();
            EXPECT_EQ(options.count(QStringLiteral("local")), 1);
            EXPECT_EQ(options.count(QStringLiteral("allow_other")), 1);
        }
}

TEST_F(MountingTest, TheOptionsComeInTheirOrder)
{
    const std::string icon = desk.home() + "/resources/volume.icns";
    fs::create_directories(desk.home() + "/resources");
    writeFile(icon, "icon");
    const VolumePtr volume = archived();
    const auto options = [&] { return volume->mountOptions().join(u'|').toStdString(); };
    const std::string begin = "volname=Safe|modules=iconv:volicon|from_code=UTF-8|"
                              "to_code=UTF-8-MAC|iconpath=" +
                              icon + "|native_xattr|";
    const std::string end = "auto_cache|fssubtype=10";
    EXPECT_EQ(options(), begin + end);
    volume->setLocal(true);
    EXPECT_EQ(options(), begin + "local|" + end);
    volume->setAllowAll(true);
    EXPECT_EQ(options(), begin + "local|allow_other|" + end);
    volume->setLocal(false);
    EXPECT_EQ(options(), begin + "allow_other|" + end);
    volume->setSpotlight(true);
    volume->setAllowAll(false);
    EXPECT_EQ(options(), begin + "local|allow_other|" + end);
}

TEST_F(MountingTest, AFolderThatIsGoneIsSaidAndTheHandlerWaitsForTheNextMount)
{
    const VolumePtr volume = ready();
    const std::string away = desk.home() + "/away";
    fs::rename(coreText(volume->path()), away);
    expectStop(volume);
    ASSERT_EQ(alertCount(), 1U);
    EXPECT_EQ(headline(), "The Nimbrel Folder does not exist.");
    EXPECT_EQ(detail(), "");
    fs::rename(away, coreText(volume->path()));
    expectNextMountTellsItsHandler(volume);
}

TEST_F(MountingTest, AConfigurationThatIsGoneIsSaidWithItsPathAsItIs)
{
    const VolumePtr volume = ready("100%@ %s %%");
    const std::string configuration = coreText(volume->configPath());
    fs::rename(configuration, desk.home() + "/away");
    expectStop(volume);
    ASSERT_EQ(alertCount(), 1U);
    EXPECT_EQ(headline(), "The configuration file does not exist.");
    EXPECT_EQ(detail(), "Tried to find it at " + configuration);
    fs::rename(desk.home() + "/away", configuration);
    expectNextMountTellsItsHandler(volume);
}

TEST_F(MountingTest, AConfigurationFoundUnderItsOldNameStopsTheMountLaterAllTheSame)
{
    const VolumePtr volume = ready();
    const std::string old = coreText(volume->path()) + "/Keyfile.nmx";
    fs::rename(coreText(volume->configPath()), old);
    expectStop(volume);
    ASSERT_EQ(alertCount(), 1U);
    EXPECT_EQ(headline(),
              "The path " + coreText(volume->path()) + " is not a valid Nimbrel Folder.");
    fs::rename(old, coreText(volume->configPath()));
    expectNextMountTellsItsHandler(volume);
}

TEST_F(MountingTest, ARecordMadeForAFolderOfTheOldNameMounts)
{
    const VolumePtr made = archived();
    fs::rename(coreText(made->configPath()), coreText(made->path()) + "/Keyfile.nmx");
    const VolumePtr volume =
        NBNimbrelVolume::withPath(desk.services, made->path(), SecureBuffer::copyOf(rightPassword));
    EXPECT_TRUE(desk.mount(volume));
}

TEST_F(MountingTest, AMountPointInUseIsAskedAboutAndCancelStops)
{
    const VolumePtr first = mounted();
    const VolumePtr second = desk.fromArchive(first);
    second->setPassphrase(SecureBuffer::copyOf(rightPassword));
    EXPECT_TRUE(second->isMountPointInUse());
    desk.alerts.answers = {0};
    expectStop(second);
    ASSERT_EQ(alertCount(), 1U);
    EXPECT_EQ(headline(),
              "The mount point " + coreText(first->mountPoint()) + " is already in use.");
    EXPECT_EQ(detail(), "It will be unmounted now.\n\nDo you want to continue?");
    EXPECT_EQ(desk.alerts.shown[0].buttons,
              QStringList({QStringLiteral("OK"), QStringLiteral("Cancel")}));
    ASSERT_TRUE(desk.unmount(first));
    EXPECT_FALSE(second->isMountPointInUse());
    expectNextMountTellsItsHandler(second);
}

TEST_F(MountingTest, WithoutAPasswordThePersonIsAskedAndMayCancel)
{
    const VolumePtr volume = archived();
    expectStop(volume);
    EXPECT_EQ(desk.person.timesAsked, 1);
    EXPECT_EQ(alertCount(), 0U);
    desk.person.passwords = {std::string(rightPassword)};
    expectNextMountTellsItsHandler(volume);
    EXPECT_EQ(desk.person.timesAsked, 2);
}

TEST_F(MountingTest, AWrongPasswordBringsTheQuestionBackUntilItIsRight)
{
    const VolumePtr volume = archived();
    desk.person.passwords = {"wrong", "wrong, too", "still wrong", std::string(rightPassword)};
    desk.person.rememberPasswords = false;
    EXPECT_TRUE(desk.mount(volume));
    EXPECT_EQ(desk.person.timesAsked, 4);
    EXPECT_EQ(alertCount(), 0U);
    EXPECT_EQ(volume->passphrase(), rightPassword);
    EXPECT_FALSE(volume->storePassphrase());
}

TEST_F(MountingTest, CancellingAfterAWrongPasswordStops)
{
    const VolumePtr volume = archived();
    desk.person.passwords = {"wrong"};
    expectStop(volume);
    EXPECT_EQ(desk.person.timesAsked, 2);
    EXPECT_EQ(alertCount(), 0U);
    EXPECT_TRUE(desk.hasNoMounts());
    volume->setPassphrase(SecureBuffer::copyOf(rightPassword));
    expectNextMountTellsItsHandler(volume);
}

TEST_F(MountingTest, TheKeyIsCheckedWhateverTheRecordSays)
{
    const VolumePtr volume = archived();
    volume->setCheckKey(false);
    volume->setPassphrase(SecureBuffer::copyOf("wrong"));
    expectStop(volume);
    EXPECT_EQ(desk.person.timesAsked, 1);
}

TEST_F(MountingTest, AFileThatIsNotXmlIsNoNimbrelFolder)
{
    const VolumePtr volume = ready("100%@ %s");
    const std::string whole = readFile(coreText(volume->configPath()));
    writeFile(coreText(volume->configPath()), "not XML at all");
    expectStop(volume);
    ASSERT_EQ(alertCount(), 1U);
    EXPECT_EQ(headline(),
              "The path " + coreText(volume->path()) + " is not a valid Nimbrel Folder.");
    EXPECT_EQ(detail(), "Please choose a different folder or create a new Nimbrel Folder. If the "
                        "folder is being synchronized right now, please wait until the whole "
                        "folder has been synchronized and try again.");
    EXPECT_FALSE(desk.alerts.shown[0].isCaution);
    writeFile(coreText(volume->configPath()), whole);
    expectNextMountTellsItsHandler(volume);
}

struct Refusal
{
    std::string from;
    std::string to;
    std::string message;
};

TEST_F(MountingTest, EachRefusalOfTheReaderIsShownInItsOwnWords)
{
    const VolumePtr volume = ready();
    const std::string whole = readFile(coreText(volume->configPath()));
    const std::vector<Refusal> refusals = {
        {"ssl/aes", "ssl/blowfish", "Wrong cipher algorithm: ssl/blowfish."},
        {"<major>3<", "<major>2<", "Wrong cipher algorithm version, Major: 2, Minor: 0."},
        {"nameio/stream", "nameio/block", "Wrong name algorithm: nameio/block."},
        {"<keySize>256<", "<keySize>160<", "Wrong key size: 160."},
        {"<blockSize>4096<", "<blockSize>1000<", "Wrong block size: 1000."},
        {"<blockSize>4096<", "<blockSize>0<", "The block size 0 is not from 16 to 67108864 bytes."},
        {"<uniqueIV>0<", "<uniqueIV>1<", "\"Unique IV\" not supported."},
        {"<chainedNameIV>0<", "<chainedNameIV>1<", "\"Chained Name IV\" not supported."},
        {"<externalIVChaining>0<", "<externalIVChaining>1<",
         "\"External IV Chaining\" not supported."},
        {"<blockMACBytes>0<", "<blockMACBytes>8<", "Wrong \"Block MAC Bytes\": 8."},
        {"<blockMACRandBytes>0<", "<blockMACRandBytes>8<", "Wrong \"Block MAC Random Bytes\": 8."},
        {"<encodedKeySize>52<", "<encodedKeySize>51<", "Wrong encoded key."},
        {"<saltLen>20<", "<saltLen>19<", "Wrong SALT."},
        {"<kdfIterations>5000<", "<kdfIterations>0<",
         "The number of key iterations 0 is not from 1 to 10000000."},
    };
    for (const Refusal &refusal : refusals) {
        desk.alerts.shown.clear();
        edit(volume, refusal.from, refusal.to);
        expectStop(volume);
        ASSERT_EQ(alertCount(), 1U) << refusal.message;
        EXPECT_EQ(headline(), "Wrong folder configuration file!");
        EXPECT_EQ(detail(), refusal.message);
        EXPECT_TRUE(desk.alerts.shown[0].isCaution);
        EXPECT_EQ(coreText(desk.alerts.shown[0].windowTitle), "Nimbrel");
        writeFile(coreText(volume->configPath()), whole);
    }
    EXPECT_EQ(desk.person.timesAsked, 0);
    expectNextMountTellsItsHandler(volume);
}

TEST_F(MountingTest, TheHelpOfARefusalOpensTheSupportPage)
{
    const VolumePtr volume = ready();
    setElement(volume, "uniqueIV", "1");
    expectStop(volume);
    ASSERT_EQ(alertCount(), 1U);
    ASSERT_TRUE(desk.alerts.shown[0].showHelp);
    EXPECT_THAT(desk.workspace.urls, ::testing::IsEmpty());
    desk.alerts.shown[0].showHelp();
    ASSERT_EQ(desk.workspace.urls.size(), 1);
    EXPECT_EQ(coreText(desk.workspace.urls[0].scheme()), "https");
    EXPECT_FALSE(desk.workspace.urls[0].host().isEmpty());
    EXPECT_EQ(coreText(desk.workspace.urls[0].path()), supportPage);
    EXPECT_TRUE(volume->alertShowHelp());
}

TEST_F(MountingTest, TheReadersTextServesAsAFormatAndReadsNothingThatIsNotThere)
{
    const VolumePtr volume = ready();
    edit(volume, "ssl/aes", "100%% %@ %s %n");
    expectStop(volume);
    ASSERT_EQ(alertCount(), 1U);
    EXPECT_EQ(detail(), "Wrong cipher algorithm: 100% %@ %s %n.");
}

TEST_F(MountingTest, ResultsArriveOnTheMainThread)
{
    const VolumePtr volume = ready();
    QThread *handled = nullptr;
    RecordedDelegate delegate;
    volume->setDelegate(&delegate);
    volume->mount([&](bool) { handled = QThread::currentThread(); });
    ASSERT_TRUE(eventLoopUntil([&] { return handled != nullptr; }));
    EXPECT_EQ(handled, QThread::currentThread());
    volume->unmount();
    ASSERT_TRUE(eventLoopUntil([&] { return delegate.didUnmount == 1; }));
    volume->mount();
    ASSERT_TRUE(eventLoopUntil([&] { return delegate.didMount == 1; }));
    EXPECT_THAT(delegate.threads, ::testing::Each(QThread::currentThread()));
    volume->setDelegate(nullptr);
}

TEST_F(MountingTest, AMountWithAHandlerDoesNotReachTheDelegate)
{
    const VolumePtr volume = ready();
    RecordedDelegate delegate;
    volume->setDelegate(&delegate);
    EXPECT_TRUE(desk.mount(volume));
    EXPECT_EQ(delegate.didMount, 0);
    EXPECT_TRUE(desk.unmount(volume));
    EXPECT_EQ(delegate.didUnmount, 0);
    volume->setDelegate(nullptr);
}

TEST_F(MountingTest, OpeningAVolumeMountsItFirstWhereItIsNot)
{
    const VolumePtr volume = ready();
    volume->openAndMountIfRequired();
    EXPECT_TRUE(desk.workspace.opened.isEmpty());
    ASSERT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
    EXPECT_EQ(desk.workspace.opened, QStringList{volume->mountPoint()});
    volume->openAndMountIfRequired();
    EXPECT_EQ(desk.workspace.opened, QStringList({volume->mountPoint(), volume->mountPoint()}));
}

TEST_F(MountingTest, OpeningAVolumeThatDoesNotMountOpensNothing)
{
    const VolumePtr volume = ready();
    fs::create_directories(onDisk(volume, "in the way"));
    volume->openAndMountIfRequired();
    ASSERT_TRUE(eventLoopUntil([&] { return alertCount() == 1; }));
    EXPECT_TRUE(desk.workspace.opened.isEmpty());
}

TEST_F(MountingTest, DroppingTheRecordEndsItsDisk)
{
    VolumePtr volume = mounted();
    const std::string point = canonicalPoint(volume);
    ASSERT_EQ(mountedAt(point), "fuse.nimbrel");
    volume.reset();
    EXPECT_TRUE(eventLoopUntil([&] { return !mountedAt(point); }));
}

TEST_F(MountingTest, DroppingTheRecordInTheMiddleOfAMountLeavesNoDisk)
{
    VolumePtr volume = ready();
    const std::string point = canonicalPoint(volume);
    volume->mount(into(results));
    volume.reset();
    settle();
    EXPECT_THAT(results, ::testing::IsEmpty());
    EXPECT_TRUE(desk.hasNoMounts());
}

} // namespace
} // namespace nimbrel::test
