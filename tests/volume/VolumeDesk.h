// A desktop with everything that volumes need, real but for the person.
#pragma once

#include "fs/MountKeeper.h"
#include "platform/DesktopBookmarks.h"
#include "platform/Resources.h"
#include "platform/SecretServiceStore.h"
#include "platform/SettingsFile.h"
#include "platform/Workspace.h"
#include "support/FakeAlerts.h"
#include "support/PrivateDesktop.h"
#include "volume/NBVolumesController.h"
#include "volume/NBVolumesUserInterface.h"

#include <QCoreApplication>

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace nimbrel::test {

// Answers what the windows would ask.
class FakePerson final : public NBVolumesUserInterface
{
public:
    std::optional<PassphraseAnswer> passphraseFor(const NBNimbrelVolume &volume) override;
    [[nodiscard]] bool advancedMode() const override { return isAdvanced; }
    std::optional<NBNewVolumeSettings> newVolumeSettings() override;
    bool showSuccess(const NBNimbrelVolume &volume) override;
    void addVolumeAtPath(const QString &path) override { added.push_back(path); }

    std::deque<std::string> passwords; // for the next questions; then the person cancels
    bool rememberPasswords = true;
    int timesAsked = 0;
    bool isAdvanced = true;
    std::optional<NBNewVolumeSettings> wanted; // taken by the next new volume
    bool wantsToSeeNewVolumes = false;
    QStringList shownAsNew; // configuration paths
    QStringList added;
};

// Writes down what is to be opened.
class RecordedWorkspace final : public Workspace
{
public:
    void openFile(const QString &path) override { opened.push_back(path); }
    void selectFile(const QString &path, const QString &inFileViewerRootedAtPath) override
    {
        selected.push_back(path);
        roots.push_back(inFileViewerRootedAtPath);
    }
    void openURL(const QUrl &url) override { urls.push_back(url); }
    [[nodiscard]] bool showsMountedDisksOnDesktop() const override { return showsDisks; }

    QStringList opened;
    QStringList selected;
    QStringList roots;
    QList<QUrl> urls;
    bool showsDisks = false;
};

// Lines of the system log while it lives.
class SystemLogLines final
{
public:
    SystemLogLines();
    ~SystemLogLines();
    SystemLogLines(const SystemLogLines &) = delete;
    SystemLogLines &operator=(const SystemLogLines &) = delete;

    [[nodiscard]] QStringList lines() const;
    // How many lines hold `text`.
    [[nodiscard]] qsizetype count(const QString &text) const;
};

// One at a time. Its volumes must go before it; `makeController` keeps one until the end.
class VolumeDesk final
{
public:
    explicit VolumeDesk(PrivateDesktopOptions options = {.bus = false, .keyring = false});
    ~VolumeDesk(); // unmounts what is left
    VolumeDesk(const VolumeDesk &) = delete;
    VolumeDesk &operator=(const VolumeDesk &) = delete;

    [[nodiscard]] std::string home() const { return _desktop.home(); }
    [[nodiscard]] QString path(const std::string &name) const; // below the home folder
    [[nodiscard]] PrivateDesktop &desktop() noexcept { return _desktop; }

    // A folder below the home folder with these files in it, none of them a real one; its path.
    QString makeFolder(const std::string &name, const std::vector<std::string> &files = {});
    // A record of a new encrypted folder that stands on disk.
    [[nodiscard]] VolumePtr makeVolume(const std::string &name, std::string_view password,
                                       bool encodeFilenames = true);
    // The same folder as the archive brings it: without key and password.
    [[nodiscard]] VolumePtr fromArchive(const VolumePtr &volume);
    [[nodiscard]] NBVolumesController &makeController();

    // Mounts or unmounts and waits for the handler; false when it says so or never comes.
    [[nodiscard]] bool mount(const VolumePtr &volume);
    [[nodiscard]] bool unmount(const VolumePtr &volume);
    // Nothing of the home folder is mounted any more.
    [[nodiscard]] bool hasNoMounts() const;

private:
    MountKeeper _keeper;
    PrivateDesktop _desktop;

public:
    FakeAlerts alerts;
    FakePerson person;
    RecordedWorkspace workspace;
    SecretServiceStore secrets;
    SettingsFile preferences;
    DesktopBookmarks bookmarks;
    Resources resources;
    VolumeServices services;

private:
    std::unique_ptr<NBVolumesController> _controller;
};

// Runs the event loop until `condition` holds; false when it doesn't within `limit`.
template <class Condition>
[[nodiscard]] bool eventLoopUntil(Condition condition,
                                  std::chrono::milliseconds limit = std::chrono::seconds(30))
{
    return eventually(
        [&] {
            QCoreApplication::processEvents();
            return condition();
        },
        limit);
}

// Runs the event loop until nothing is left to do in the background.
void settle();

} // namespace nimbrel::test
