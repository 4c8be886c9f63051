// What tests of mounted volumes share.
#pragma once

#include "support/Files.h"
#include "support/MountInfo.h"
#include "volume/TextConversion.h"
#include "volume/VolumeDesk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QThread>

#include <filesystem>

namespace nimbrel::test {

inline constexpr std::string_view rightPassword = "the right password";

// Counts what a volume tells its delegate, and on which threads.
class RecordedDelegate final : public NBNimbrelVolumeDelegate
{
public:
    void volumeDidMount(NBNimbrelVolume & /*volume*/) override { count(didMount); }
    void volumeDidUnmount(NBNimbrelVolume & /*volume*/) override { count(didUnmount); }

    int didMount = 0;
    int didUnmount = 0;
    std::vector<QThread *> threads;

private:
    void count(int &calls)
    {
        ++calls;
        threads.push_back(QThread::currentThread());
    }
};

class VolumeFixture : public ::testing::Test
{
protected:
    explicit VolumeFixture(PrivateDesktopOptions options = {.bus = false, .keyring = false})
        : desk(options)
    {
    }
    void SetUp() override { NIMBREL_NEED_MOUNTS(); }

    // The record of a new encrypted folder as the archive brings it: no password is known.
    VolumePtr archived(const std::string &label = "Safe")
    {
        return desk.fromArchive(desk.makeVolume(label, rightPassword));
    }
    VolumePtr ready(const std::string &label = "Safe")
    {
        VolumePtr volume = archived(label);
        volume->setPassphrase(SecureBuffer::copyOf(rightPassword));
        return volume;
    }
    VolumePtr mounted(const std::string &label = "Safe")
    {
        VolumePtr volume = ready(label);
        EXPECT_TRUE(desk.mount(volume));
        return volume;
    }

    // Keeps what a handler says.
    VolumeHandler into(std::vector<bool> &results)
    {
        return [&results](bool result) { results.push_back(result); };
    }
    [[nodiscard]] static bool hasIdled(const VolumePtr &volume)
    {
        return eventLoopUntil([&] { return !volume->isBusy(); });
    }

    [[nodiscard]] static std::string onDisk(const VolumePtr &volume, const std::string &name)
    {
        return coreText(volume->mountPoint()) + "/" + name;
    }
    // The kernel's spelling of a volume's mount point, which need not exist.
    [[nodiscard]] static std::string canonicalPoint(const VolumePtr &volume)
    {
        return std::filesystem::weakly_canonical(coreText(volume->mountPoint())).string();
    }

    [[nodiscard]] std::string headline(std::size_t alert = 0) const
    {
        return coreText(desk.alerts.shown.at(alert).messageText);
    }
    [[nodiscard]] std::string detail(std::size_t alert = 0) const
    {
        return coreText(desk.alerts.shown.at(alert).informativeText);
    }
    [[nodiscard]] std::size_t alertCount() const { return desk.alerts.shown.size(); }

    VolumeDesk desk;
};

} // namespace nimbrel::test
