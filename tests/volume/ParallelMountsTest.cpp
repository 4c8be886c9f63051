// Ten volumes at start: the window stays alive.
#include "config/ConfigurationBackup.h"
#include "config/ConfigurationWriter.h"
#include "config/NBNimbrelFSPreferences.h"
#include "fs/NBNimbrelFS.h"
#include "support/MountInfo.h"
#include "volume/TextConversion.h"
#include "volume/VolumeDesk.h"

#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int count = 10;
constexpr std::string_view password = "one for all ten";

template <class Work>
double millisecondsOf(Work work)
{
    const auto begin = Clock::now();
    work();
    return Milliseconds(Clock::now() - begin).count();
}

class ParallelMountsTest : public ::testing::Test
{
protected:
    void SetUp() override { NIMBREL_NEED_MOUNTS(); }

    void makeVolumes(NBVolumesController &controller)
    {
        for (int i = 0; i < count; ++i) {
            const VolumePtr made = desk.makeVolume("Disk" + std::to_string(i), password);
            slowDown(made);
            controller.volumes().append(desk.fromArchive(made));
            controller.volumes().last()->setPassphrase(SecureBuffer::copyOf(password));
        }
    }

    // A folder whose key takes a while, as those of other programs of the format do.
    static void slowDown(const VolumePtr &volume);

    double derivation(const VolumePtr &volume)
    {
        NBPreferencesError error;
        const auto preferences =
            NBNimbrelFSPreferences().preferencesWithURL(coreText(volume->configPath()), &error);
        return millisecondsOf([&] {
            EXPECT_NE(NBNimbrelFS::withRootPath(coreText(volume->path()), *preferences, password),
                      nullptr);
        });
    }

    VolumeDesk desk{{.bus = true, .keyring = true}};
};

void ParallelMountsTest::slowDown(const VolumePtr &volume)
{
    NBPreferencesDictionary preferences;
    preferences.set(preferenceKey::kdfIterations, std::int64_t{120'000});
    const auto slow = NBNimbrelFS::withRootPath(coreText(volume->path()), preferences);
    slow->setAreFilenamesEncrypted(true);
    ASSERT_TRUE(slow->setPassphrase(password));
    ASSERT_FALSE(writeConfiguration(coreText(volume->configPath()), slow->settings(), password,
                                    configurationBackupFolder()));
}

TEST_F(ParallelMountsTest, TenVolumesMountWithoutHoldingTheMainThread)
{
    NBVolumesController &controller = desk.makeController();
    makeVolumes(controller);
    int mounted = 0;
    QObject::connect(&controller,
                     &NBVolumesController::NBVolumesControllerDidMountVolumeNotification,
                     &controller, [&] { ++mounted; });
    const double oneKey = derivation(controller.volumes().first());

    const auto begin = Clock::now();
    double longest = millisecondsOf([&] { controller.automountVolumes(); });
    const double start = longest;
    const auto end = begin + std::chrono::seconds(120);
    while (mounted < count && Clock::now() < end) {
        longest = std::max(longest, millisecondsOf([] { QCoreApplication::processEvents(); }));
        sleepBriefly();
    }
    const double all = Milliseconds(Clock::now() - begin).count();

    EXPECT_EQ(mounted, count);
    EXPECT_LT(longest, oneKey);
    RecordProperty("one_key_ms", std::to_string(oneKey));
    std::printf("[ figures  ] one key %.1f ms; ten volumes mounted in %.1f ms; the main thread was "
                "held %.1f ms by the start and at most %.1f ms at a time\n",
                oneKey, all, start, longest);
}

} // namespace
} // namespace nimbrel::test
