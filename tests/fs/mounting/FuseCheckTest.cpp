#include "fs/FuseCheck.h"

#include "support/Files.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nimbrel::test {
namespace {

constexpr uid_t someone = 1000;

// Surroundings where an ordinary user may mount, to be spoilt.
class NBFuseCheckTest : public testing::Test
{
protected:
    NBFuseCheckTest()
    {
        writeFile(_surroundings.configuration, "#user_allow_other\n");
        _surroundings.user = someone;
    }

    std::string check(bool allowOther = false)
    {
        const auto failure = checkFuse(_surroundings, allowOther);
        if (!failure)
            return "fine";
        EXPECT_EQ(failure->cause, MountFailure::Cause::Fuse);
        EXPECT_EQ(failure->message.find('\n'), std::string::npos);
        return failure->message;
    }
    std::string checkWith(const std::string &configuration)
    {
        writeFile(_surroundings.configuration, configuration);
        return check(true);
    }

    TempFolder _temp;
    // /bin/su stands for fusermount3: a program of root's with that right is all that counts.
    FuseSurroundings _surroundings{
        .device = "/dev/null", .configuration = _temp / "fuse.conf", .helper = "/bin/su"};
};

TEST_F(NBFuseCheckTest, AnOrdinaryUserWithAHelperIsFine)
{
    EXPECT_EQ(check(), "fine");
}

TEST_F(NBFuseCheckTest, AMissingDeviceNamesTheModule)
{
    _surroundings.device = _temp / "no-fuse";
    const std::string wanted = "This system has no FUSE: " + _surroundings.device +
                               " is missing. Run `sudo modprobe fuse`; a container needs that "
                               "device from outside.";
    EXPECT_EQ(check(), wanted);
    _surroundings.user = 0;
    EXPECT_EQ(check(), wanted);
}

TEST_F(NBFuseCheckTest, RootMustOpenTheDevice)
{
    _surroundings.user = 0;
    _surroundings.helper.reset();
    EXPECT_EQ(check(true), "fine");
    _surroundings.device = _temp.path(); // a folder can't be opened for writing, by root neither
    EXPECT_EQ(check(), _surroundings.device +
                           " can't be opened: Is a directory. Run `sudo modprobe fuse`; in a "
                           "container, allow the device.");
}

TEST_F(NBFuseCheckTest, ADeviceForRootAloneIsFineWithTheHelper)
{
    _surroundings.device = _temp / "device";
    writeFile(_surroundings.device, "");
    ::chmod(_surroundings.device.c_str(), 0000);
    EXPECT_EQ(check(), "fine");
}

TEST_F(NBFuseCheckTest, AMissingHelperNamesThePackage)
{
    _surroundings.helper.reset();
    EXPECT_EQ(check(), "The program fusermount3 is missing. Run `sudo apt install fuse3`.");
}

TEST_F(NBFuseCheckTest, AHelperWithoutItsRightIsTold)
{
    _surroundings.helper = "/bin/sh";
    EXPECT_EQ(check(), "/bin/sh has lost its right to mount (set-user-ID root). Run `sudo apt "
                       "install --reinstall fuse3`.");
}

TEST_F(NBFuseCheckTest, ASandboxWithoutNewRightsIsTold)
{
    _surroundings.mayGainRights = false;
    EXPECT_EQ(check(), "This program runs where /bin/su gets no right to mount (no new "
                       "privileges). Start it outside of the sandbox.");
}

TEST_F(NBFuseCheckTest, OtherUsersNeedTheSystemsLeave)
{
    EXPECT_EQ(check(true), "This system doesn't let you open a disk to other users. Have an "
                           "administrator add the line `user_allow_other` to " +
                               _surroundings.configuration + ", or mount without allow_other.");
}

TEST_F(NBFuseCheckTest, TheLeaveIsAWordAloneOnALine)
{
    EXPECT_EQ(checkWith("mount_max = 10\nuser_allow_other\n"), "fine");
    EXPECT_EQ(checkWith("  user_allow_other\t# for the media server\n"), "fine");
    EXPECT_NE(checkWith("# user_allow_other\n"), "fine");
    EXPECT_NE(checkWith("user_allow_others\n"), "fine");
    EXPECT_NE(checkWith("user_allow_other = 1\n"), "fine");
    EXPECT_NE(checkWith("\n\n"), "fine");
}

TEST_F(NBFuseCheckTest, ALastLineWithoutItsEndDoesNotCount)
{
    EXPECT_NE(checkWith("user_allow_other"), "fine");
}

TEST_F(NBFuseCheckTest, AMissingConfigurationGivesNoLeave)
{
    ::unlink(_surroundings.configuration.c_str());
    EXPECT_NE(check(true), "fine");
}

TEST_F(NBFuseCheckTest, RootNeedsNoLeave)
{
    _surroundings.user = 0;
    EXPECT_EQ(check(true), "fine");
}

TEST_F(NBFuseCheckTest, TheRealSurroundingsAreThisProcesss)
{
    const FuseSurroundings real = fuseSurroundings();
    EXPECT_EQ(real.device, "/dev/fuse");
    EXPECT_EQ(real.configuration, "/etc/fuse.conf");
    EXPECT_EQ(real.user, ::geteuid());
}

} // namespace
} // namespace nimbrel::test
