// Mounts and unmounts through the list, and who hears of them.
#include "config/UniqueFd.h"
#include "support/Files.h"
#include "support/MountInfo.h"
#include "volume/StoredList.h"

#include <QThread>

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>

namespace nimbrel::test {
namespace {

namespace fs = std::filesystem;

const std::string password = "a password";

// What a window would hear, in its order, as "mounted Work".
class Listener final
{
public:
    explicit Listener(NBVolumesController &controller)
    {
        using Controller = NBVolumesController;
        QObject::connect(&controller, &Controller::NBVolumesControllerDidMountVolumeNotification,
                         &_context, [this](NBNimbrelVolume &volume) {
                             heard += "mounted " + coreText(volume.label()) + ";";
                         });
        QObject::connect(&controller, &Controller::NBVolumesControllerDidUnmountVolumeNotification,
                         &_context, [this](NBNimbrelVolume &volume) {
                             heard += "unmounted " + coreText(volume.label()) + ";";
                         });
    }

    // For a handler: says what it was told.
    VolumeHandler handler()
    {
        return [this](bool done) { heard += done ? "handler: done;" : "handler: failed;"; };
    }

    std::string heard;

private:
    QObject _context;
};

class ControllerTest : public ::testing::Test
{
protected:
    // A volume on the list. It has its key and its password.
    VolumePtr add(const std::string &label)
    {
        controller.volumes().append(desk.makeVolume(label, password));
        return controller.volumes().last();
    }

    [[nodiscard]] bool hears(const std::string &all)
    {
        return eventLoopUntil([&] { return listener.heard == all; });
    }

    static RunResult eject(const VolumePtr &volume)
    {
        return run({"fusermount3", "-u", "--", coreText(volume->mountPoint())});
    }

    VolumeDesk desk;
    NBVolumesController &controller = desk.makeController();
    Listener listener{controller};
};

class MountedControllerTest : public ControllerTest
{
protected:
    void SetUp() override { NIMBREL_NEED_MOUNTS(); }

    VolumePtr addMounted(const std::string &label)
    {
        VolumePtr volume = add(label);
        controller.mountVolume(volume);
        EXPECT_TRUE(hears("mounted " + label + ";"));
        listener.heard.clear();
        return volume;
    }
};

TEST_F(ControllerTest, OpeningShowsTheMountPointWhateverItsState)
{
    const VolumePtr volume = add("Work");
    controller.openVolume(volume);
    EXPECT_EQ(desk.workspace.opened, QStringList{volume->mountPoint()});
    EXPECT_FALSE(volume->isMounted() || volume->isBusy());
}

TEST_F(ControllerTest, FolderHandedInFromOutsideReachesTheUserInterface)
{
    controller.openVolumeAtPath(desk.path("Handed.nmc"));
    EXPECT_EQ(desk.person.added, QStringList{desk.path("Handed.nmc")});
    EXPECT_TRUE(controller.volumes().isEmpty());
}

TEST_F(ControllerTest, MountThatStopsEarlyOpensNothingAndAddsNoAlert)
{
    const VolumePtr volume = add("Work");
    fs::remove_all(coreText(volume->path()));
    controller.openVolumeInFinder(volume);
    settle();
    EXPECT_TRUE(desk.workspace.opened.isEmpty());
    EXPECT_EQ(listener.heard, "");
    ASSERT_EQ(desk.alerts.shown.size(), 1U);
    EXPECT_EQ(desk.alerts.shown.front().messageText,
              QStringLiteral("The Nimbrel Folder does not exist."));
}

TEST_F(ControllerTest, VolumeWhoseFolderHasGoneStaysOnTheList)
{
    const VolumePtr volume = add("Work");
    fs::remove_all(coreText(volume->path()));
    controller.automountVolumes();
    settle();
    EXPECT_EQ(controller.volumes(), QList<VolumePtr>{volume});
    EXPECT_EQ(desk.alerts.shown.size(), 1U);
}

TEST_F(ControllerTest, UnmountOfWhatWasNeverMountedTellsNobody)
{
    const VolumePtr volume = add("Work");
    controller.unmountVolume(volume, listener.handler());
    settle();
    EXPECT_EQ(listener.heard, "");
    EXPECT_EQ(volume->delegate(), nullptr);
}

TEST_F(ControllerTest, ListMayChangeWhileItIsMounted)
{
    const VolumePtr first = add("First");
    const VolumePtr second = add("Second");
    fs::remove_all(coreText(first->path()));
    fs::remove_all(coreText(second->path()));
    desk.alerts.whileShown = [this](const Alert &) { controller.volumes().clear(); };
    controller.mountVolumes();
    settle();
    EXPECT_EQ(desk.alerts.shown.size(), 2U);
}

TEST_F(ControllerTest, ControllerThatGoesLeavesItsVolumesWithoutADelegate)
{
    auto other = std::make_unique<NBVolumesController>(desk.services);
    const VolumePtr listed = add("Listed");
    const VolumePtr taken = add("Taken");
    for (const VolumePtr &volume : {listed, taken}) {
        fs::remove_all(coreText(volume->path()));
        other->volumes().append(volume);
        other->mountVolume(volume);
        ASSERT_NE(volume->delegate(), nullptr);
    }
    other->volumes().removeOne(taken);
    other.reset();
    EXPECT_EQ(listed->delegate(), nullptr);
    EXPECT_EQ(taken->delegate(), nullptr);
}

TEST_F(ControllerTest, ControllerThatGoesLeavesAnothersDelegatesAlone)
{
    auto other = std::make_unique<NBVolumesController>(desk.services);
    const VolumePtr volume = add("Work");
    fs::remove_all(coreText(volume->path()));
    other->volumes().append(volume);
    other->mountVolume(volume);
    controller.mountVolume(volume);
    const auto *const delegate = volume->delegate();
    ASSERT_NE(delegate, nullptr);
    other.reset();
    EXPECT_EQ(volume->delegate(), delegate);
}

TEST_F(MountedControllerTest, NotificationIsOutBeforeTheHandlerHears)
{
    const VolumePtr volume = add("Work");
    controller.mountVolume(volume, listener.handler());
    EXPECT_TRUE(hears("mounted Work;handler: done;"));
    listener.heard.clear();
    controller.unmountVolume(volume, listener.handler());
    EXPECT_TRUE(hears("unmounted Work;handler: done;"));
    settle();
    EXPECT_EQ(listener.heard, "unmounted Work;handler: done;");
}

TEST_F(MountedControllerTest, NotificationComesSynchronouslyWithTheVolumesStateSettled)
{
    const VolumePtr volume = add("Work");
    int heard = 0;
    QObject context;
    QObject::connect(&controller,
                     &NBVolumesController::NBVolumesControllerDidMountVolumeNotification, &context,
                     [&](NBNimbrelVolume &mounted) {
                         ++heard;
                         EXPECT_EQ(&mounted, volume.get());
                         EXPECT_TRUE(mounted.isMounted() && !mounted.isBusy());
                         EXPECT_EQ(QThread::currentThread(), controller.thread());
                     });
    int heardBefore = -1;
    controller.mountVolume(volume, [&](bool) { heardBefore = heard; });
    EXPECT_TRUE(eventLoopUntil([&] { return heardBefore >= 0; }));
    EXPECT_EQ(heardBefore, 1);
    EXPECT_EQ(heard, 1);
}

TEST_F(MountedControllerTest, MountsAndUnmountsWithoutAHandlerAreAnnouncedOnce)
{
    const VolumePtr volume = add("Work");
    controller.mountVolume(volume);
    EXPECT_TRUE(hears("mounted Work;"));
    controller.unmountVolume(volume);
    EXPECT_TRUE(hears("mounted Work;unmounted Work;"));
    settle();
    EXPECT_EQ(listener.heard, "mounted Work;unmounted Work;");
    EXPECT_TRUE(desk.hasNoMounts());
}

TEST_F(MountedControllerTest, FailedMountReachesTheHandlerAlone)
{
    const VolumePtr volume = add("Work");
    fs::create_directories(desk.home() + "/Volumes");
    writeFile(coreText(volume->mountPoint()), "in the way");
    controller.mountVolume(volume, listener.handler());
    EXPECT_TRUE(hears("handler: failed;"));
    settle();
    EXPECT_EQ(listener.heard, "handler: failed;");
}

TEST_F(MountedControllerTest, EjectedVolumeIsAnnouncedThroughTheDelegate)
{
    const VolumePtr volume = addMounted("Work");
    const RunResult ejected = eject(volume);
    ASSERT_EQ(ejected.status, 0) << ejected.error;
    EXPECT_TRUE(hears("unmounted Work;"));
    EXPECT_FALSE(volume->isMounted());
    settle();
    EXPECT_EQ(listener.heard, "unmounted Work;");
}

TEST_F(MountedControllerTest, VolumeMountedWithoutTheListIsAnnouncedNeitherWay)
{
    const VolumePtr volume = add("Work");
    ASSERT_TRUE(desk.mount(volume));
    const RunResult ejected = eject(volume);
    ASSERT_EQ(ejected.status, 0) << ejected.error;
    EXPECT_TRUE(eventLoopUntil([&] { return !volume->isMounted(); }));
    settle();
    EXPECT_EQ(listener.heard, "");
}

TEST_F(MountedControllerTest, DelegateStaysAfterAMountAndGoesWithAnUnmount)
{
    const VolumePtr volume = addMounted("Work");
    EXPECT_NE(volume->delegate(), nullptr);
    controller.unmountVolume(volume);
    EXPECT_EQ(volume->delegate(), nullptr);
    EXPECT_TRUE(hears("unmounted Work;"));
    EXPECT_EQ(volume->delegate(), nullptr);
    controller.mountVolume(volume);
    EXPECT_NE(volume->delegate(), nullptr);
    EXPECT_TRUE(hears("unmounted Work;mounted Work;"));
}

TEST_F(MountedControllerTest, UnmountOfABusyVolumeTellsNobodyAndLeavesItWithoutADelegate)
{
    const VolumePtr volume = add("Work");
    const SystemLogLines log;
    controller.mountVolume(volume, [this](bool done) { listener.heard += done ? "up;" : "no;"; });
    controller.unmountVolume(volume, listener.handler());
    EXPECT_EQ(log.count(QStringLiteral("Work: Busy...")), 1);
    EXPECT_TRUE(hears("mounted Work;up;"));
    settle();
    EXPECT_EQ(listener.heard, "mounted Work;up;");
    EXPECT_EQ(volume->delegate(), nullptr);
    EXPECT_TRUE(volume->isMounted());
}

TEST_F(MountedControllerTest, OpeningInTheFileBrowserMountsFirst)
{
    const VolumePtr volume = add("Work");
    controller.openVolumeInFinder(volume);
    EXPECT_TRUE(desk.workspace.opened.isEmpty());
    EXPECT_TRUE(eventLoopUntil([&] { return !desk.workspace.opened.isEmpty(); }));
    EXPECT_EQ(desk.workspace.opened, QStringList{volume->mountPoint()});
    EXPECT_EQ(listener.heard, "mounted Work;");
    controller.openVolumeInFinder(volume);
    EXPECT_EQ(desk.workspace.opened, (QStringList{volume->mountPoint(), volume->mountPoint()}));
    EXPECT_EQ(listener.heard, "mounted Work;");
}

TEST_F(MountedControllerTest, FailedMountOpensNothingAndShowsNothingOfItsOwn)
{
    const VolumePtr volume = add("Work");
    fs::create_directories(desk.home() + "/Volumes");
    writeFile(coreText(volume->mountPoint()), "in the way");
    controller.openVolumeInFinder(volume);
    EXPECT_TRUE(eventLoopUntil([&] { return !volume->isBusy(); }));
    settle();
    EXPECT_TRUE(desk.workspace.opened.isEmpty());
    EXPECT_EQ(desk.alerts.shown.size(), 1U) << "the mount's own";
    EXPECT_EQ(listener.heard, "");
}

TEST_F(MountedControllerTest, AllVolumesMountWhateverTheySay)
{
    add("First")->setAutomount(false);
    add("Second");
    controller.mountVolumes();
    EXPECT_TRUE(eventLoopUntil([&] {
        return controller.volumes()[0]->isMounted() && controller.volumes()[1]->isMounted();
    }));
}

TEST_F(MountedControllerTest, AtTheStartOnlyThoseMountThatWantTo)
{
    add("First")->setAutomount(false);
    const VolumePtr second = add("Second");
    controller.automountVolumes();
    EXPECT_TRUE(hears("mounted Second;"));
    settle();
    EXPECT_FALSE(controller.volumes()[0]->isMounted());
    EXPECT_FALSE(controller.volumes()[0]->isBusy());
}

TEST_F(MountedControllerTest, UnmountingAllUnmountsThoseThatAreMounted)
{
    const VolumePtr first = addMounted("First");
    const VolumePtr second = add("Second");
    controller.unmountVolumes();
    EXPECT_TRUE(first->isBusy());
    EXPECT_FALSE(second->isBusy());
    EXPECT_TRUE(hears("unmounted First;"));
    EXPECT_TRUE(desk.hasNoMounts());
}

// Lifetimes.

TEST_F(MountedControllerTest, VolumeTakenOffTheListStillUnmounts)
{
    VolumePtr volume = addMounted("Work");
    controller.unmountVolume(volume);
    controller.volumes().clear();
    const std::weak_ptr<NBNimbrelVolume> weak = volume;
    volume.reset();
    EXPECT_FALSE(weak.expired()) << "its unmount goes on";
    EXPECT_TRUE(hears("unmounted Work;"));
    EXPECT_TRUE(desk.hasNoMounts());
    settle();
    EXPECT_TRUE(weak.expired());
    EXPECT_FALSE(fs::exists(desk.home() + "/Volumes/Work"));
}

TEST_F(MountedControllerTest, MountedVolumeThatIsDroppedEndsItsDisk)
{
    (void)addMounted("Work");
    ASSERT_FALSE(desk.hasNoMounts());
    settle(); // its link on the desktop is made in the background
    controller.volumes().clear();
    EXPECT_TRUE(desk.hasNoMounts());
    EXPECT_TRUE(fs::is_empty(desk.home() + "/Volumes"));
    EXPECT_TRUE(fs::is_empty(desk.desktop().desktopFolder()));
    EXPECT_EQ(listener.heard, "");
}

TEST_F(MountedControllerTest, VolumeThatIsDroppedWhileItMountsLeavesNoDisk)
{
    controller.mountVolume(add("Work"), listener.handler());
    controller.volumes().clear();
    settle();
    EXPECT_TRUE(eventLoopUntil([&] { return desk.hasNoMounts(); }));
    EXPECT_EQ(listener.heard, "");
}

TEST_F(MountedControllerTest, VolumeThatIsDroppedWhileItsDiskStartsLeavesNoDisk)
{
    VolumePtr volume = add("Work");
    const fs::path mountPoint = coreText(volume->mountPoint());
    controller.mountVolume(volume, listener.handler());
    EXPECT_TRUE(eventLoopUntil([&] { return fs::exists(mountPoint); }));
    controller.volumes().clear();
    volume.reset();
    settle();
    EXPECT_TRUE(eventLoopUntil([&] { return desk.hasNoMounts(); }));
    EXPECT_EQ(listener.heard, "");
}

// Without its delegate, the disk's end would be told to nobody: a window would show it for ever.
TEST_F(MountedControllerTest, DiskThatRefusedToGoIsStillReportedWhenItIsEjectedLater)
{
    const VolumePtr volume = addMounted("Work");
    {
        const std::string path = coreText(volume->mountPoint()) + "/open.txt";
        writeFile(path, "in use");
        const UniqueFd open(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
        controller.unmountVolume(volume, listener.handler());
        ASSERT_TRUE(eventLoopUntil([&] { return !volume->isBusy(); }));
    }
    ASSERT_TRUE(volume->isMounted());
    listener.heard.clear();
    const RunResult ejected = eject(volume);
    ASSERT_EQ(ejected.status, 0) << ejected.error;
    EXPECT_TRUE(eventLoopUntil([&] { return !volume->isMounted(); }));
    EXPECT_EQ(listener.heard, "unmounted Work;");
}

TEST_F(MountedControllerTest, VolumeThatTakesAnothersPlaceMountsWhenThatHasLeftIt)
{
    const VolumePtr old = add("Old");
    old->setLabel(QStringLiteral("Same"));
    const VolumePtr next = add("Next");
    next->setLabel(QStringLiteral("Same"));
    ASSERT_TRUE(desk.mount(old));
    controller.makeRoom(old);
    controller.volumes().removeOne(old);
    controller.mountVolume(next, listener.handler());
    EXPECT_FALSE(next->isBusy());
    EXPECT_TRUE(hears("unmounted Same;mounted Same;handler: done;"));
    EXPECT_FALSE(old->isMounted());
    EXPECT_TRUE(next->isMounted());
    EXPECT_TRUE(desk.alerts.shown.empty());
}

// Without the guard the new disk meets the old one for ever: nothing in the list unmounts that.
TEST_F(MountedControllerTest, AReplacedDiskThatRefusedToGoIsAskedAgainByTheNextMount)
{
    const VolumePtr old = add("Old");
    old->setLabel(QStringLiteral("Same"));
    const VolumePtr next = add("Next");
    next->setLabel(QStringLiteral("Same"));
    ASSERT_TRUE(desk.mount(old));
    {
        const std::string path = coreText(old->mountPoint()) + "/open.txt";
        writeFile(path, "in use");
        const UniqueFd open(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
        controller.makeRoom(old);
        controller.volumes().removeOne(old);
        controller.mountVolume(next, listener.handler());
        EXPECT_TRUE(hears("handler: failed;"));
        ASSERT_TRUE(eventLoopUntil([&] { return !desk.alerts.shown.empty(); }));
    }
    EXPECT_EQ(desk.alerts.shown.size(), 1U) << "the reason alone, no second alert of the mount";
    EXPECT_EQ(controller.leftBehind(), QList<VolumePtr>{old});
    listener.heard.clear();
    controller.mountVolume(next, listener.handler());
    EXPECT_TRUE(hears("unmounted Same;mounted Same;handler: done;"));
    EXPECT_TRUE(controller.leftBehind().isEmpty());
}

TEST_F(MountedControllerTest, VolumeMountedThroughAListThatHasGoneUnmountsInPeace)
{
    auto other = std::make_unique<NBVolumesController>(desk.services);
    const VolumePtr volume = add("Work");
    Listener heardThere(*other);
    other->mountVolume(volume);
    EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
    EXPECT_EQ(heardThere.heard, "mounted Work;");
    other.reset();
    const RunResult ejected = eject(volume);
    ASSERT_EQ(ejected.status, 0) << ejected.error;
    EXPECT_TRUE(eventLoopUntil([&] { return !volume->isMounted(); }));
    EXPECT_EQ(heardThere.heard, "mounted Work;");
}

TEST_F(MountedControllerTest, ListThatGoesWhileItsVolumeMountsOpensNothing)
{
    auto other = std::make_unique<NBVolumesController>(desk.services);
    const VolumePtr volume = add("Work");
    other->openVolumeInFinder(volume);
    other.reset();
    EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
    settle();
    EXPECT_TRUE(desk.workspace.opened.isEmpty());
}

} // namespace
} // namespace nimbrel::test
