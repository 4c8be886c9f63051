// Passwords and keys stay inside the program that serves a disk.
#include "mount/Calls.h"
#include "mount/DaemonFacts.h"
#include "mount/MountedFolder.h"
#include "mount/OpenFile.h"
#include "mount/OrdinaryDisk.h"
#include "mount/OrdinaryUser.h"
#include "support/Files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace nimbrel::test {

namespace {

constexpr const char *secret = "a quite unmistakable pass phrase";

class SecrecyTest : public testing::Test
{
protected:
    void SetUp() override
    {
        NIMBREL_NEED_FUSE();
        NIMBREL_NEED_ENCRYPTED_DISK();
    }
};

// The program and its helpers.
std::vector<pid_t> family(const MountedFolder &disk)
{
    std::vector<pid_t> all = descendants(disk.daemon());
    all.push_back(disk.daemon());
    return all;
}

std::string ofProcess(pid_t process, const char *what)
{
    return "/proc/" + std::to_string(process) + "/" + what;
}

// Whether the process has `text` anywhere in memory that it may write. Needs root.
bool hasInMemory(pid_t process, const std::string &text)
{
    const OpenFile memory(ofProcess(process, "mem"));
    std::istringstream maps(readFile(ofProcess(process, "maps")));
    for (std::string line; std::getline(maps, line);) {
        unsigned long begin = 0;
        unsigned long end = 0;
        char access[5] = {};
        if (std::sscanf(line.c_str(), "%lx-%lx %4s", &begin, &end, access) != 3 || access[1] != 'w')
            continue;
        try {
            const std::string piece = memory.readAt(end - begin, static_cast<off_t>(begin));
            if (piece.find(text) != std::string::npos)
                return true;
        } catch (const std::runtime_error &) {
            continue; // memory that even root can't read
        }
    }
    return false;
}

TEST_F(SecrecyTest, ThePasswordIsNeitherArgumentNorEnvironment)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root may look into the program";
    const MountedFolder disk({.password = secret});
    for (const pid_t process : family(disk)) {
        EXPECT_THAT(readFile(ofProcess(process, "cmdline")),
                    testing::Not(testing::HasSubstr(secret)));
        EXPECT_THAT(readFile(ofProcess(process, "environ")),
                    testing::Not(testing::HasSubstr(secret)));
    }
}

TEST_F(SecrecyTest, TheProgramSaysNothingOfIt)
{
    MountedFolder disk({.password = secret});
    writeFile(disk / "private-name", "private text");
    EXPECT_THAT(disk.process().log(), testing::Not(testing::HasSubstr(secret)));
    EXPECT_THAT(disk.process().log(), testing::Not(testing::HasSubstr("private")));
}

TEST_F(SecrecyTest, ThePasswordIsWipedOnceTheDiskIsMounted)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root may look into the program";
    const MountedFolder disk({.password = secret});
    writeFile(disk / "a", "text");
    for (const pid_t process : family(disk))
        EXPECT_FALSE(hasInMemory(process, secret)) << ofProcess(process, "mem");
    // The search itself finds what is there.
    const std::string own = std::string(secret) + "!";
    EXPECT_TRUE(hasInMemory(::getpid(), own));
}

TEST_F(SecrecyTest, ThePasswordFileIsClosed)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root may look into the program";
    const MountedFolder disk;
    for (const pid_t process : family(disk))
        for (const auto &entry : std::filesystem::directory_iterator(ofProcess(process, "fd"))) {
            std::error_code error;
            const std::string target = std::filesystem::read_symlink(entry.path(), error);
            EXPECT_THAT(target, testing::Not(testing::HasSubstr("password")));
        }
}

// Not even the same user's debugger or core dump gets at the keys.
TEST_F(SecrecyTest, TheOwnUserCannotLookIntoTheProgram)
{
    if (::geteuid() == 0)
        NIMBREL_NEED_ACCOUNT();
    const MountedFolder disk({.user = ::geteuid() == 0 ? nobody() : std::nullopt});
    const auto look = [](pid_t process) {
        return errnoOf([&] { return ::open(ofProcess(process, "mem").c_str(), O_RDONLY); });
    };
    for (const pid_t process : {disk.daemon()}) {
        const std::string path = ofProcess(process, "mem");
        EXPECT_EQ(statusOf(path).st_uid, 0U) << "the program can be dumped";
        const OrdinaryUser user{.user = nobody().value_or(0),
                                .group = static_cast<gid_t>(nobody().value_or(0))};
        const int error =
            ::geteuid() == 0 ? as(user, [&] { return look(process); }) : look(process);
        EXPECT_EQ(error, EACCES);
    }
}

} // namespace

} // namespace nimbrel::test
