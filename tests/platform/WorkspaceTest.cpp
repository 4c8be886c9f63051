#include "platform/DesktopWorkspace.h"

#include "support/BusRecorder.h"
#include "support/FileManagerRecorder.h"
#include "support/Files.h"
#include "support/PrivateDesktop.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>

namespace nimbrel::test {

namespace {

const QString portalName = u"org.freedesktop.portal.Desktop"_qs;
const QString refusal = u"org.freedesktop.DBus.Error.UnknownMethod"_qs;
// Everything that an address or a command line could take for its own.
const char *const oddName = "-Böse #1? 100%20 & 'x'";

// One desktop for all: Qt keeps its connection to the bus as long as the process lives.
PrivateDesktop &desktop()
{
    static PrivateDesktop shared({.keyring = false});
    return shared;
}

class WorkspaceTest : public ::testing::Test
{
protected:
    WorkspaceTest()
        : _folder(_temp.makeFolder(oddName)), _file(_folder + "/a b.txt"),
          _programs(_temp.makeFolder("programs")), _path(std::getenv("PATH"))
    {
        (void)desktop();
        writeFile(_file, "x");
        writeFile(_programs + "/xdg-open",
                  "#!/bin/sh\nprintf '%s\\n' \"$@\" >> '" + opened() + "'\n");
        std::filesystem::permissions(_programs + "/xdg-open", std::filesystem::perms::owner_all);
        ::setenv("PATH", (_programs + ":" + _path).c_str(), 1);
    }
    ~WorkspaceTest() override { ::setenv("PATH", _path.c_str(), 1); }

    [[nodiscard]] std::string opened() const { return _temp / "opened"; }
    // The arguments of xdg-open, each with a line end, when there are so many.
    [[nodiscard]] std::string openedByProgram(std::ptrdiff_t count = 1) const
    {
        std::string text;
        (void)eventually([&] {
            QCoreApplication::processEvents();
            text = std::filesystem::exists(opened()) ? readFile(opened()) : "";
            return std::count(text.begin(), text.end(), '\n') >= count;
        });
        return text;
    }
    [[nodiscard]] QString folder() const { return QString::fromStdString(_folder); }
    [[nodiscard]] QString file() const { return QString::fromStdString(_file); }
    [[nodiscard]] QStringList folderUri() const
    {
        return {u"file://"_qs + QString::fromStdString(_temp.path()) +
                u"/-B%C3%B6se%20%231%3F%20100%2520%20&%20'x'"_qs};
    }
    [[nodiscard]] QStringList fileUri() const { return {folderUri().first() + u"/a%20b.txt"_qs}; }

    TempFolder _temp;
    std::string _folder;
    std::string _file;
    std::string _programs;
    std::string _path;
    DesktopWorkspace _workspace;
};

TEST_F(WorkspaceTest, FolderOpensInTheFileManager)
{
    const FileManagerRecorder manager;
    _workspace.openFile(folder());
    ASSERT_TRUE(manager.waitForCalls(1));
    EXPECT_EQ(manager.calls().front().method, u"ShowFolders"_qs);
    EXPECT_EQ(manager.calls().front().uris, folderUri());
    EXPECT_TRUE(manager.calls().front().startupId.isEmpty());
    EXPECT_FALSE(std::filesystem::exists(opened()));
}

TEST_F(WorkspaceTest, FolderOpensByThePortalWithoutAFileManager)
{
    const BusRecorder portal(portalName);
    _workspace.openFile(folder());
    ASSERT_TRUE(portal.waitForCalls(1));
    const BusCall call = portal.calls().front();
    EXPECT_EQ(call.path, u"/org/freedesktop/portal/desktop"_qs);
    EXPECT_EQ(call.interface, u"org.freedesktop.portal.OpenURI"_qs);
    EXPECT_EQ(call.method, u"OpenFile"_qs);
    ASSERT_EQ(call.arguments.size(), 3);
    EXPECT_EQ(call.arguments.at(1).toString(), folder());
}

TEST_F(WorkspaceTest, FolderOpensByAProgramWhenNothingElseIsThere)
{
    _workspace.openFile(folder());
    EXPECT_EQ(openedByProgram(), _folder + "\n");
}

TEST_F(WorkspaceTest, EachWayIsTriedWhenTheOneBeforeRefuses)
{
    FileManagerRecorder manager;
    manager.refuse(refusal);
    BusRecorder portal(portalName);
    portal.refuse(refusal);
    _workspace.openFile(folder());
    EXPECT_EQ(openedByProgram(), _folder + "\n");
    EXPECT_EQ(manager.calls().size(), 1U);
    EXPECT_EQ(portal.calls().size(), 1U);
}

TEST_F(WorkspaceTest, NothingMoreIsTriedAfterSuccess)
{
    const FileManagerRecorder manager;
    const BusRecorder portal(portalName);
    _workspace.openFile(folder());
    _workspace.openFile(folder());
    ASSERT_TRUE(manager.waitForCalls(2));
    // What would follow has come when the bus has answered a later question.
    _workspace.openURL(QUrl(u"https://example.com/"_qs));
    ASSERT_TRUE(portal.waitForCalls(1));
    EXPECT_EQ(portal.calls().size(), 1U);
    EXPECT_EQ(portal.calls().front().method, u"OpenURI"_qs);
}

TEST_F(WorkspaceTest, FileOpensByThePortalNotInTheFileManager)
{
    const FileManagerRecorder manager;
    const BusRecorder portal(portalName);
    _workspace.openFile(file());
    ASSERT_TRUE(portal.waitForCalls(1));
    EXPECT_EQ(portal.calls().front().method, u"OpenFile"_qs);
    EXPECT_EQ(portal.calls().front().arguments.at(1).toString(), file());
    EXPECT_TRUE(manager.calls().empty());
}

TEST_F(WorkspaceTest, FileOpensByAProgramWithoutAPortal)
{
    _workspace.openFile(file());
    EXPECT_EQ(openedByProgram(), _file + "\n");
}

TEST_F(WorkspaceTest, RelativePathIsNoOptionOfTheProgram)
{
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(_temp.path());
    _workspace.openFile(QString::fromUtf8(oddName));
    std::filesystem::current_path(before);
    EXPECT_EQ(openedByProgram(), _folder + "\n");
}

TEST_F(WorkspaceTest, MissingItemOpensNothing)
{
    const FileManagerRecorder manager;
    _workspace.openFile(folder() + u"/missing"_qs);
    _workspace.openFile(folder());
    ASSERT_TRUE(manager.waitForCalls(1));
    EXPECT_EQ(manager.calls().size(), 1U);
    EXPECT_EQ(manager.calls().front().uris, folderUri());
    EXPECT_FALSE(std::filesystem::exists(opened()));
}

TEST_F(WorkspaceTest, SelectedFileIsPickedOut)
{
    const FileManagerRecorder manager;
    _workspace.selectFile(file(), folder());
    ASSERT_TRUE(manager.waitForCalls(1));
    EXPECT_EQ(manager.calls().front().method, u"ShowItems"_qs);
    EXPECT_EQ(manager.calls().front().uris, fileUri());
}

TEST_F(WorkspaceTest, SelectedFileThatIsMissingShowsTheRoot)
{
    const FileManagerRecorder manager;
    _workspace.selectFile(folder() + u"/Getting Started.pdf"_qs, folder());
    ASSERT_TRUE(manager.waitForCalls(1));
    EXPECT_EQ(manager.calls().front().method, u"ShowFolders"_qs);
    EXPECT_EQ(manager.calls().front().uris, folderUri());
}

TEST_F(WorkspaceTest, SelectedFileIsShownByThePortalWithoutAFileManager)
{
    const BusRecorder portal(portalName);
    _workspace.selectFile(file(), folder());
    ASSERT_TRUE(portal.waitForCalls(1));
    EXPECT_EQ(portal.calls().front().method, u"OpenDirectory"_qs);
    EXPECT_EQ(portal.calls().front().arguments.at(1).toString(), file());
}

TEST_F(WorkspaceTest, SelectedFilesFolderOpensByAProgramAtLast)
{
    _workspace.selectFile(file(), folder());
    EXPECT_EQ(openedByProgram(), _folder + "\n");
}

TEST_F(WorkspaceTest, AddressOpensByThePortal)
{
    const BusRecorder portal(portalName);
    _workspace.openURL(QUrl(u"https://example.com/ä b?x=1&y=%23#z"_qs));
    ASSERT_TRUE(portal.waitForCalls(1));
    EXPECT_EQ(portal.calls().front().method, u"OpenURI"_qs);
    EXPECT_EQ(portal.calls().front().arguments.at(1).toString(),
              u"https://example.com/%C3%A4%20b?x=1&y=%23#z"_qs);
}

TEST_F(WorkspaceTest, AddressOpensByAProgramWithoutAPortal)
{
    _workspace.openURL(QUrl(u"https://example.com/a?b=c&d"_qs));
    EXPECT_EQ(openedByProgram(), "https://example.com/a?b=c&d\n");
}

TEST_F(WorkspaceTest, AddressOfAFolderOpensTheFolder)
{
    const FileManagerRecorder manager;
    _workspace.openURL(QUrl::fromLocalFile(folder()));
    ASSERT_TRUE(manager.waitForCalls(1));
    EXPECT_EQ(manager.calls().front().uris, folderUri());
}

TEST_F(WorkspaceTest, CallReturnsBeforeTheDesktopAnswers)
{
    auto manager = std::make_unique<BusRecorder>(u"org.freedesktop.FileManager1"_qs);
    manager->stayAwayFromAnswers();
    const auto begin = std::chrono::steady_clock::now();
    _workspace.openFile(folder());
    _workspace.selectFile(file(), folder());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_TRUE(manager->waitForCalls(2));
    manager.reset(); // it dies over the calls
    EXPECT_EQ(openedByProgram(2), _folder + "\n" + _folder + "\n");
}

TEST_F(WorkspaceTest, WorkspaceMayGoBeforeTheDesktopAnswers)
{
    {
        DesktopWorkspace shortLived;
        shortLived.openFile(folder());
    }
    EXPECT_EQ(openedByProgram(), _folder + "\n");
}

TEST_F(WorkspaceTest, WithoutAnAddressOfABusTheProgramOpens)
{
    const std::string address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    _workspace.openFile(folder());
    EXPECT_EQ(openedByProgram(), _folder + "\n");
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
}

// GIO reads the settings' places once a process, so each question gets a process of its own.
class MountedDisksOnDesktopTest : public ::testing::Test
{
protected:
    void install(const std::string &schema, const std::string &key = "volumes-visible",
                 const std::string &type = "b", const std::string &value = "true")
    {
        writeFile(_temp / "a.gschema.xml", "<schemalist><schema id='" + schema + "' path='/" +
                                               schema + "/'><key name='" + key + "' type='" + type +
                                               "'><default>" + value +
                                               "</default></key></schema></schemalist>");
        const RunResult compiled = run({"glib-compile-schemas", "--strict", _temp.path()});
        ASSERT_EQ(compiled.status, 0) << compiled.error;
    }
    void userSets(const std::string &schema, const std::string &value)
    {
        std::filesystem::create_directories(settingsFolder());
        writeFile(settingsFolder() + "/keyfile",
                  "[" + schema + "]\nvolumes-visible=" + value + "\n");
    }
    [[nodiscard]] std::string answerOn(const std::string &currentDesktop) const
    {
        const RunResult result =
            run({NIMBREL_DESKTOP_PROBE},
                {.environment = {"XDG_CURRENT_DESKTOP=" + currentDesktop,
                                 "GSETTINGS_SCHEMA_DIR=" + _temp.path(),
                                 "GSETTINGS_BACKEND=keyfile", "XDG_DATA_DIRS=" + _temp.path()}});
        return result.status == 0 ? result.output : "failed: " + result.error;
    }

    TempFolder _temp;

private:
    [[nodiscard]] static std::string settingsFolder()
    {
        return desktop().config() + "/glib-2.0/settings";
    }
};

TEST_F(MountedDisksOnDesktopTest, CinnamonsDefaultCounts)
{
    (void)desktop();
    install("org.nemo.desktop");
    EXPECT_EQ(answerOn("X-Cinnamon"), "shown\n");
    EXPECT_EQ(answerOn("ubuntu:X-Cinnamon:GNOME"), "shown\n");
}

TEST_F(MountedDisksOnDesktopTest, TheUsersChoiceCounts)
{
    install("org.mate.caja.desktop");
    userSets("org.mate.caja.desktop", "false");
    EXPECT_EQ(answerOn("MATE"), "not shown\n");
    userSets("org.mate.caja.desktop", "true");
    EXPECT_EQ(answerOn("MATE"), "shown\n");
}

TEST_F(MountedDisksOnDesktopTest, AnotherDesktopsSettingDoesNotCount)
{
    (void)desktop();
    install("org.nemo.desktop");
    EXPECT_EQ(answerOn("GNOME"), "not shown\n");
    EXPECT_EQ(answerOn("MATE"), "not shown\n");
    EXPECT_EQ(answerOn("X-CinnamonX"), "not shown\n");
    EXPECT_EQ(answerOn(""), "not shown\n");
}

TEST_F(MountedDisksOnDesktopTest, MissingSettingsAreNoEnd)
{
    (void)desktop();
    EXPECT_EQ(answerOn("X-Cinnamon"), "not shown\n"); // no schemas at all
    install("org.nemo.desktop", "other-key");
    EXPECT_EQ(answerOn("X-Cinnamon"), "not shown\n");
    install("org.nemo.desktop", "volumes-visible", "s", "'true'");
    EXPECT_EQ(answerOn("X-Cinnamon"), "not shown\n");
}

TEST_F(MountedDisksOnDesktopTest, DeadBusDoesNotEndTheProgramAfterwards)
{
    PrivateDesktop doomed({.keyring = false});
    install("org.nemo.desktop");
    RunningProcess probe(
        {NIMBREL_DESKTOP_PROBE, "stay"},
        {.environment = {"XDG_CURRENT_DESKTOP=X-Cinnamon", "GSETTINGS_SCHEMA_DIR=" + _temp.path(),
                         "GSETTINGS_BACKEND=memory"}});
    ASSERT_TRUE(eventually([&] { return probe.log() == "shown\non the bus\n"; })) << probe.log();
    doomed.stopBus();
    ASSERT_TRUE(eventually([&] { return probe.log() == "shown\non the bus\nbus gone\n"; }))
        << probe.log();
    EXPECT_EQ(probe.wait(std::chrono::seconds(30)), 0);
}

} // namespace

} // namespace nimbrel::test
