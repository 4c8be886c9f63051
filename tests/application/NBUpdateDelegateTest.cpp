#include "app/NBUpdateDelegate.h"

#include "app/FeedScan.h"
#include "app/Util.h"
#include "assistants/AssistantsDesk.h"
#include "crypto/Base64.h"

#include <QSemaphore>
#include <QThreadPool>

#include <filesystem>

namespace nimbrel::test {
namespace {

class NBUpdateDelegateTest : public ::testing::Test
{
protected:
    // A client's folder, which is there.
    void installDropbox()
    {
        const std::string root = desk.desk.home() + "/Dropbox";
        std::filesystem::create_directories(root);
        std::filesystem::create_directories(desk.desk.home() + "/.dropbox");
        writeFile(desk.desk.home() + "/.dropbox/host.db",
                  "5d1f6fe4\n" + base64EncodedString(bytesOf(root)) + "\n");
    }
    void add(const std::string &path, bool encodeFilenames = false)
    {
        const VolumePtr volume = NBNimbrelVolume::withPath(desk.services, desk.path(path));
        volume->setEncodeFilenames(encodeFilenames);
        desk.controller().addVolume(volume);
    }
    [[nodiscard]] static QVariant valueOf(const char *key, const FeedParameters &parameters)
    {
        for (const FeedParameter &parameter : parameters)
            if (parameter.key == QLatin1String(key))
                return parameter.value;
        ADD_FAILURE() << "no " << key;
        return {};
    }
    [[nodiscard]] QVariant value(const char *key) const
    {
        return valueOf(key, delegate.feedParametersForUpdater());
    }
    [[nodiscard]] std::string text(const char *key) const
    {
        return value(key).toString().toStdString();
    }

    AssistantsDesk desk;
    bool isFirstRun = false;
    NBUpdateDelegate delegate{desk.application, desk.desk.preferences,
                              [this] { return isFirstRun; }, QStringLiteral("1.9")};
};

TEST_F(NBUpdateDelegateTest, TheServicesHaveTheirNumbers)
{
    const QHash<QString, int> wanted{{QStringLiteral("Dropbox"), 1},
                                     {QStringLiteral("Google Drive"), 2},
                                     {QStringLiteral("SkyDrive"), 3},
                                     {QStringLiteral("Sugar Sync"), 4},
                                     {QStringLiteral("Box"), 5}};
    EXPECT_EQ(delegate.cloudServiceIds(), wanted);
}

TEST_F(NBUpdateDelegateTest, SevenParametersComeInTheirOrder)
{
    QStringList keys;
    for (const FeedParameter &parameter : delegate.feedParametersForUpdater())
        keys.append(parameter.key);
    EXPECT_EQ(keys.join(u' ').toStdString(),
              "platform_id version hwid firstRun volumeCount filenameEncryption providers");
}

TEST_F(NBUpdateDelegateTest, WithoutVolumesAndClientsThereIsNothingToTell)
{
    EXPECT_EQ(value("volumeCount"), QVariant(0));
    EXPECT_EQ(value("filenameEncryption"), QVariant(false));
    EXPECT_EQ(text("providers"), "");
    EXPECT_EQ(text("platform_id"), "2");
    EXPECT_EQ(text("version"), "1.9");
    EXPECT_EQ(value("hwid").toString(), Util::hardwareId());
}

TEST_F(NBUpdateDelegateTest, OneVolumeUnderAClientsFolderHasItsNumber)
{
    installDropbox();
    add("Dropbox/Safe.nmc", true);
    EXPECT_EQ(value("volumeCount"), QVariant(1));
    EXPECT_EQ(value("filenameEncryption"), QVariant(true));
    EXPECT_EQ(text("providers"), "1");
}

TEST_F(NBUpdateDelegateTest, AVolumeOutsideOfAllFoldersIsAZero)
{
    installDropbox();
    add("Dropbox/Safe.nmc");
    add("elsewhere/Other.nmc");
    EXPECT_EQ(text("providers"), "1,0");
    EXPECT_EQ(value("filenameEncryption"), QVariant(false));
}

TEST_F(NBUpdateDelegateTest, TwoVolumesUnderOneFolderAreTwoNumbers)
{
    installDropbox();
    add("Dropbox/Safe.nmc");
    add("Dropbox/Other.nmc");
    EXPECT_EQ(text("providers"), "1,1");
}

TEST_F(NBUpdateDelegateTest, AVolumeUnderTwoServicesAddsAZeroThoughItMatched)
{
    installDropbox();
    const std::string box = desk.desk.home() + "/Library/Application Support/Box Sync";
    std::filesystem::create_directories(box);
    writeFile(box + "/LastLoggedInUserData.yaml",
              "SyncRootPath: !!python/unicode '" + desk.desk.home() + "'\n");
    add("Dropbox/Safe.nmc");
    EXPECT_EQ(text("providers"), "1,5,0");
}

TEST_F(NBUpdateDelegateTest, WithoutAServiceNoVolumeSeemsToEncodeItsNames)
{
    add("Dropbox/Safe.nmc", true);
    EXPECT_EQ(value("filenameEncryption"), QVariant(false));
    EXPECT_EQ(text("providers"), "0");
    EXPECT_EQ(value("volumeCount"), QVariant(1));
}

TEST_F(NBUpdateDelegateTest, TheBetaPreferenceHasAPlatformOfItsOwn)
{
    desk.desk.preferences.setValue(preferencesKey::updateToBeta, true);
    EXPECT_EQ(text("platform_id"), "21");
}

TEST_F(NBUpdateDelegateTest, TheFirstRunIsAskedForAtEachRequest)
{
    EXPECT_EQ(value("firstRun"), QVariant(false));
    isFirstRun = true;
    EXPECT_EQ(value("firstRun"), QVariant(true));
}

TEST_F(NBUpdateDelegateTest, TruthsAreOnesAndZerosInTheRequest)
{
    EXPECT_EQ((FeedParameter{{}, true}.text()), QStringLiteral("1"));
    EXPECT_EQ((FeedParameter{{}, false}.text()), QStringLiteral("0"));
    EXPECT_EQ((FeedParameter{{}, 12}.text()), QStringLiteral("12"));
    EXPECT_EQ((FeedParameter{{}, QStringLiteral("true")}.text()), QStringLiteral("true"));
}

TEST_F(NBUpdateDelegateTest, WithoutWaitingTheSameComesOnTheMainThread)
{
    installDropbox();
    add("Dropbox/Safe.nmc", true);
    FeedParameters parameters;
    const auto done = std::make_shared<FeedParametersHandler>([&](const FeedParameters &found) {
        EXPECT_EQ(QThread::currentThread(), qApp->thread());
        parameters = found;
    });
    delegate.feedParametersForUpdater(done);
    EXPECT_TRUE(parameters.isEmpty());
    ASSERT_TRUE(eventLoopUntil([&] { return !parameters.isEmpty(); }));
    EXPECT_EQ(valueOf("providers", parameters), QVariant(QStringLiteral("1")));
    EXPECT_EQ(valueOf("filenameEncryption", parameters), QVariant(true));
}

TEST_F(NBUpdateDelegateTest, WhoHasGoneHearsNothing)
{
    bool wasCalled = false;
    auto done =
        std::make_shared<FeedParametersHandler>([&](const FeedParameters &) { wasCalled = true; });
    delegate.feedParametersForUpdater(done);
    done.reset();
    settle();
    EXPECT_FALSE(wasCalled);
}

TEST_F(NBUpdateDelegateTest, TheRunningVersionIsComparedWhateverTheFirstArgumentSays)
{
    const auto order = [&](const char *version, const char *toVersion) {
        return delegate.versionComparatorForUpdater().compareVersion(QLatin1String(version),
                                                                     QLatin1String(toVersion));
    };
    EXPECT_EQ(order("1.9", "1.10"), std::strong_ordering::less);
    EXPECT_EQ(order("99", "1.10"), std::strong_ordering::less);
    EXPECT_EQ(order("1", "1.9"), std::strong_ordering::equal);
    EXPECT_EQ(order("1", "1.09"), std::strong_ordering::equal);
    EXPECT_EQ(order("1", "1.8.7"), std::strong_ordering::greater);
}

TEST_F(NBUpdateDelegateTest, ARelaunchIsNeverPostponedAndTheComparatorIsTheDelegate)
{
    EXPECT_FALSE(NBUpdateDelegate::shouldPostponeRelaunchForUpdate());
    EXPECT_EQ(&delegate.versionComparatorForUpdater(), &delegate);
}

TEST_F(NBUpdateDelegateTest, WithoutAnotherVersionItIsTheProgramsOwn)
{
    const NBUpdateDelegate own(desk.application, desk.desk.preferences, [] { return false; });
    EXPECT_EQ(own.version(), NBUpdateDelegate::programVersion());
    EXPECT_FALSE(own.version().isEmpty());
}

// A service whose answers are given.
class GivenService final : public NBCloudService
{
public:
    GivenService(const char *name, const QString &root, int timesAvailable = 1000)
        : NBCloudService(QLatin1String(name)), _timesAvailable(timesAvailable)
    {
        finishUnseen(root);
    }
    bool isAvailable() override { return _timesAvailable-- > 0; }

private:
    int _timesAvailable;
};

class FeedScanTest : public ::testing::Test
{
protected:
    void service(const char *name, const char *root, int timesAvailable = 1000)
    {
        services.push_back(
            std::make_unique<GivenService>(name, QLatin1String(root), timesAvailable));
    }
    [[nodiscard]] FeedScan scan(const QList<ScannedVolume> &volumes) const
    {
        return scanServices(services, volumes,
                            {{QStringLiteral("Dropbox"), 1}, {QStringLiteral("Box"), 5}});
    }

    NBCloudServiceDiscoveryController::Services services;
    const ScannedVolume inDropbox{QStringLiteral("/x/Dropbox/a.nmc"), true};
};

TEST_F(FeedScanTest, TheTestDoesNotStopAtASeparator)
{
    service("Dropbox", "/x/Dropbox");
    EXPECT_EQ(scan({{QStringLiteral("/x/Dropbox2/a.nmc"), false}}).providers, QList<int>{1});
    EXPECT_TRUE(scan({{QStringLiteral("/y/x/Dropbox"), false}}).providers.isEmpty());
}

TEST_F(FeedScanTest, AVolumeUnderTwoServicesCountsTwice)
{
    service("Box", "/x");
    service("Dropbox", "/x/Dropbox");
    const FeedScan found = scan({inDropbox});
    EXPECT_EQ(found.providers, (QList<int>{5, 1}));
    EXPECT_EQ(found.matches, 2);
}

TEST_F(FeedScanTest, AServiceWithoutANumberCountsAsAMatchAlone)
{
    service("Nextcloud", "/x/Dropbox");
    const FeedScan found = scan({inDropbox});
    EXPECT_TRUE(found.providers.isEmpty());
    EXPECT_EQ(found.matches, 1);
}

TEST_F(FeedScanTest, AServiceThatGoesAwayEndsItsOwnRoundAlone)
{
    service("Dropbox", "/x/Dropbox", 1);
    service("Box", "/x");
    const FeedScan found = scan({inDropbox, {QStringLiteral("/x/Dropbox/b.nmc"), false}});
    EXPECT_EQ(found.providers, (QList<int>{1, 5, 5}));
}

TEST_F(FeedScanTest, NamesCountBeforeTheServiceIsAsked)
{
    service("Dropbox", "/x/Dropbox", 0);
    const FeedScan found = scan({inDropbox});
    EXPECT_TRUE(found.filenameEncryption);
    EXPECT_EQ(found.matches, 0);
    EXPECT_FALSE(scanServices({}, {inDropbox}, {}).filenameEncryption);
}

} // namespace
} // namespace nimbrel::test
