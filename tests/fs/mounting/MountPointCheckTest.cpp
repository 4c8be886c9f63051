#include "fs/MountPointCheck.h"

#include "OwnMounts.h"
#include "RawDisk.h"
#include "fs/MountTable.h"
#include "support/Files.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

using Cause = MountFailure::Cause;

std::string textOf(const CheckedMountPoint &checked)
{
    if (const auto *failure = std::get_if<MountFailure>(&checked))
        return failure->message;
    return "fine: " + std::get<std::string>(checked);
}

// A folder that may be mounted on another, and what the check says of it.
class NBMountPointCheckTest : public testing::Test
{
protected:
    void expect(Cause cause, const std::string &message)
    {
        const CheckedMountPoint checked = checkMount(_safe, _point);
        EXPECT_EQ(textOf(checked), message);
        if (const auto *failure = std::get_if<MountFailure>(&checked)) {
            EXPECT_EQ(failure->cause, cause);
        }
        EXPECT_EQ(textOf(checked).find('\n'), std::string::npos);
    }

    TempFolder _temp;
    std::string _safe = _temp.makeFolder("Safe.nmc");
    std::string _point = _temp.makeFolder("Safe");
};

TEST_F(NBMountPointCheckTest, TwoGoodFoldersGiveTheCanonicalPath)
{
    std::filesystem::create_directory_symlink(_point, _temp / "link");
    EXPECT_EQ(textOf(checkMount(_safe, _temp.path() + "/./link///")), "fine: " + _point);
}

TEST_F(NBMountPointCheckTest, ARelativePathIsFine)
{
    const std::string answer = inChild([&]() -> std::string {
        return ::chdir(_temp.path().c_str()) == 0 ? textOf(checkMount("Safe.nmc", "Safe/")) : "";
    });
    EXPECT_EQ(answer, "fine: " + _point);
}

TEST_F(NBMountPointCheckTest, AMissingEncryptedFolderIsNamed)
{
    _safe = _temp / "gone";
    expect(Cause::Folder, "The encrypted folder " + _safe +
                              " doesn't exist. Check the path, and that the disk or cloud folder "
                              "it lies in is there.");
}

TEST_F(NBMountPointCheckTest, AFileIsNoEncryptedFolder)
{
    _safe = _temp / "file";
    writeFile(_safe, "x");
    expect(Cause::Folder, _safe + " isn't a folder. Choose the encrypted folder itself.");
}

TEST_F(NBMountPointCheckTest, AnEncryptedFolderThatMayNotBeReadIsNamed)
{
    NIMBREL_NEED_ORDINARY_USER_IN(_temp.path());
    const std::string wanted = "The encrypted folder " + _safe +
                               " can't be read: Permission denied. Ask its owner for the right to "
                               "read and enter it.";
    for (const mode_t mode : {0000U, 0444U, 0111U}) {
        ::chmod(_safe.c_str(), mode);
        EXPECT_EQ(asOrdinaryUser([&] { return textOf(checkMount(_safe, _point)); }), wanted);
    }
    ::chmod(_safe.c_str(), 0755);
}

TEST_F(NBMountPointCheckTest, AMissingMountPointIsNamed)
{
    _point = _temp / "gone";
    expect(Cause::MountPoint,
           "The mount point " + _point + " doesn't exist. Make an empty folder there first.");
}

TEST_F(NBMountPointCheckTest, AnEmptyPathIsMissing)
{
    _point = "";
    expect(Cause::MountPoint, "The mount point  doesn't exist. Make an empty folder there first.");
}

TEST_F(NBMountPointCheckTest, AFileIsNoMountPoint)
{
    _point = _temp / "file";
    writeFile(_point, "x");
    expect(Cause::MountPoint, _point + " isn't a folder. Choose an empty folder.");
    _point += "/below";
    expect(Cause::MountPoint, _point + " isn't a folder. Choose an empty folder.");
}

TEST_F(NBMountPointCheckTest, AMountPointWithFilesIsRefused)
{
    writeFile(_point + "/.hidden", "x");
    expect(Cause::MountPoint,
           _point + " isn't empty. Choose an empty folder, or move its files away first.");
}

TEST_F(NBMountPointCheckTest, NonemptyLiftsThatAndNothingElse)
{
    writeFile(_point + "/file", "x");
    EXPECT_EQ(textOf(checkMount(_safe, _point, true)), "fine: " + _point);
    EXPECT_EQ(textOf(checkMount(_safe, _safe, true)),
              _safe + " is the encrypted folder itself. Choose another, empty folder to mount on.");
}

TEST_F(NBMountPointCheckTest, AMountPointInsideTheEncryptedFolderIsRefused)
{
    _point = _temp.makeFolder("Safe.nmc/a/b");
    expect(Cause::MountPoint, _point + " lies inside the encrypted folder " + _safe +
                                  ". Choose a folder outside of it.");
}

TEST_F(NBMountPointCheckTest, ALinkIntoTheEncryptedFolderIsSeenThrough)
{
    const std::string inner = _temp.makeFolder("Safe.nmc/inner");
    std::filesystem::create_directory_symlink(inner, _temp / "innocent");
    _point = _temp / "innocent";
    expect(Cause::MountPoint, inner + " lies inside the encrypted folder " + _safe +
                                  ". Choose a folder outside of it.");
}

TEST_F(NBMountPointCheckTest, TheFolderAboveTheEncryptedOneIsRefused)
{
    _point = _temp.path();
    expect(Cause::MountPoint, _point + " holds the encrypted folder " + _safe +
                                  ", which the disk would hide. Choose another, empty folder.");
}

TEST_F(NBMountPointCheckTest, ALikeBeginningIsNoRelation)
{
    // "Safe" begins the name "Safe.nmc" and is no part of it.
    EXPECT_EQ(textOf(checkMount(_safe, _point)), "fine: " + _point);
}

TEST_F(NBMountPointCheckTest, ABindMountIntoTheEncryptedFolderIsSeenThrough)
{
    NIMBREL_NEED_OWN_MOUNTS();
    const std::string window = _temp.makeFolder("window");
    const std::string below = _temp.makeFolder("Safe.nmc/inner/below");
    bindMount(_safe + "/inner", window);
    _point = window + "/below";
    expect(Cause::MountPoint, _point + " lies inside the encrypted folder " + _safe +
                                  ". Choose a folder outside of it.");
    unmountAll(window);
}

TEST_F(NBMountPointCheckTest, AMountAlreadyThereIsNamed)
{
    NIMBREL_NEED_OWN_MOUNTS();
    mountMemory(_point);
    expect(Cause::MountPoint,
           _point + " already is a mount, of memory disk (tmpfs). Choose another, empty folder.");
    unmountAll(_point);
}

TEST_F(NBMountPointCheckTest, ADiskOfOursAlreadyThereIsNamedByItsFolder)
{
    NIMBREL_NEED_RAW_DISK();
    ::chmod(_point.c_str(), 0700);
    RawDisk disk(_point);
    // It hangs, and the check must not: the probe waits some seconds and then takes it for alive.
    expect(Cause::MountPoint, _point + " already shows the encrypted folder /somewhere/Raw.nmc. "
                                       "Unmount it first, or choose another folder.");
}

TEST_F(NBMountPointCheckTest, ADeadDiskIsTakenAwayFirst)
{
    NIMBREL_NEED_RAW_DISK();
    RawDisk disk(_point);
    disk.die();
    ASSERT_TRUE(mountAt(_point));
    EXPECT_EQ(textOf(checkMount(_safe, _point + "/")), "fine: " + _point);
    EXPECT_FALSE(mountAt(_point));
}

TEST_F(NBMountPointCheckTest, AHeldDeadDiskIsTakenAwayToo)
{
    NIMBREL_NEED_RAW_DISK();
    RawDisk disk(_point);
    const UniqueFd held = disk.hold();
    disk.die();
    EXPECT_EQ(textOf(checkMount(_safe, _point)), "fine: " + _point);
}

TEST_F(NBMountPointCheckTest, DeadDisksOneOverAnotherAreAllTakenAway)
{
    NIMBREL_NEED_RAW_DISK();
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can mount over a dead disk";
    RawDisk first(_point);
    RawDisk second(_point);
    first.die();
    second.die();
    EXPECT_EQ(textOf(checkMount(_safe, _point)), "fine: " + _point);
    EXPECT_FALSE(mountAt(_point));
}

TEST_F(NBMountPointCheckTest, AnOrdinaryUsersDeadDiskIsTakenAwayByHim)
{
    NIMBREL_NEED_ORDINARY_USER_IN(_temp.path());
    NIMBREL_NEED_OWN_MOUNTS(); // as root, who becomes that user; else the tests above do it
    NIMBREL_NEED_RAW_DISK();
    ASSERT_EQ(::chown(_point.c_str(), nobody, nobody), 0);
    const std::string answer = asOrdinaryUser([&]() -> std::string {
        if (const std::string why = whyNoRawDisk(); !why.empty())
            return "fine: " + _point;
        RawDisk disk(_point);
        disk.die();
        return textOf(checkMount(_safe, _point));
    });
    EXPECT_EQ(answer, "fine: " + _point);
    EXPECT_FALSE(mountAt(_point));
}

TEST_F(NBMountPointCheckTest, AFolderThatAUserMayNotWriteIsRefused)
{
    NIMBREL_NEED_ORDINARY_USER_IN(_temp.path());
    const std::string foreign = ::geteuid() == 0 ? _point : "/usr";
    const std::string answer =
        asOrdinaryUser([&] { return textOf(checkMount(_safe, foreign, true)); });
    EXPECT_EQ(answer, "You may not write to " + foreign +
                          ": Permission denied. Choose a folder of your own.");
}

TEST_F(NBMountPointCheckTest, AStickyFolderOfSomeoneElseIsRefused)
{
    NIMBREL_NEED_ORDINARY_USER_IN(_temp.path());
    if (::geteuid() != 0)
        GTEST_SKIP() << "making someone else's folder is for root";
    ::chmod(_point.c_str(), 01777);
    const std::string answer = asOrdinaryUser([&] { return textOf(checkMount(_safe, _point)); });
    EXPECT_EQ(answer, _point + " is shared by all users and isn't yours. Make a folder in it and "
                               "choose that.");
    ASSERT_EQ(::chown(_point.c_str(), nobody, nobody), 0);
    EXPECT_EQ(asOrdinaryUser([&] { return textOf(checkMount(_safe, _point)); }), "fine: " + _point);
}

TEST_F(NBMountPointCheckTest, AMountPointThatCantBeListedIsRefused)
{
    NIMBREL_NEED_ORDINARY_USER_IN(_temp.path());
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(_point.c_str(), nobody, nobody), 0);
    }
    ::chmod(_point.c_str(), 0300);
    const std::string answer = asOrdinaryUser([&] { return textOf(checkMount(_safe, _point)); });
    EXPECT_EQ(answer, _point + " can't be read: Permission denied. Choose a folder of your own.");
}

TEST_F(NBMountPointCheckTest, AMessageStaysOneLine)
{
    _point = _temp / "two\nlines";
    expect(Cause::MountPoint, "The mount point " + _temp.path() +
                                  "/two?lines doesn't exist. Make an empty folder there first.");
}

} // namespace
} // namespace nimbrel::test
