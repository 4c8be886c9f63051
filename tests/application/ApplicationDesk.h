// The application on a real desktop, in the middle of a test.
#pragma once

#include "app/NBAppDelegate.h"
#include "app/NBStatusItemController.h"
#include "assistants/AssistantsDesk.h"
#include "assistants/Modal.h"
#include "support/Files.h"
#include "volume/NBVolumesController.h"
#include "volume/TextConversion.h"
#include "volume/VolumeDesk.h"
#include "windows/NBVolumesManagerWindowController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMenu>

namespace nimbrel::test {

class ApplicationDesk
{
public:
    explicit ApplicationDesk(PrivateDesktopOptions options = {.bus = false, .keyring = false})
        : desk(options)
    {
    }
    ~ApplicationDesk()
    {
        if (delegate)
            end();
    }
    ApplicationDesk(const ApplicationDesk &) = delete;
    ApplicationDesk &operator=(const ApplicationDesk &) = delete;

    void make()
    {
        delegate = std::make_unique<NBAppDelegate>(
            ApplicationPlatform{desk.secrets, desk.preferences, desk.workspace, desk.bookmarks,
                                desk.resources, desk.services.keeper},
            facts);
    }
    // As far as the event loop.
    void start()
    {
        make();
        delegate->applicationWillFinishLaunching();
        delegate->applicationDidFinishLaunching();
    }
    // The delegate goes, and with it every disk.
    void end()
    {
        for (const VolumePtr &volume : controller().volumes())
            if (volume->isMounted()) {
                EXPECT_TRUE(desk.unmount(volume));
            }
        delegate.reset();
        settle();
    }
    [[nodiscard]] NBVolumesController &controller() { return delegate->volumesController(); }
    [[nodiscard]] NBStatusItemController &statusItem() { return delegate->statusItemController(); }
    // A list in the preferences, as an earlier run left it.
    void store(const QList<VolumePtr> &volumes)
    {
        NBVolumesController earlier(desk.services);
        earlier.volumes() = volumes;
        earlier.saveVolumes();
    }
    [[nodiscard]] VolumePtr folder(const std::string &name, const QString &label,
                                   bool automount = false)
    {
        VolumePtr volume = desk.makeVolume(name, "secret");
        volume->setLabel(label);
        volume->setAutomount(automount);
        volume->setStorePassphrase(false);
        return volume;
    }

    VolumeDesk desk;
    LaunchFacts facts{QStringLiteral("6.1.0"), false, [this] { ++timesWoken; }};
    int timesWoken = 0;
    std::unique_ptr<NBAppDelegate> delegate;
};

// What a menu reads, "-" for a separator.
[[nodiscard]] inline QStringList entriesOf(const QMenu &menu)
{
    QStringList entries;
    for (const QAction *action : menu.actions())
        entries.append(action->isSeparator() ? QStringLiteral("-") : action->text().remove(u'&'));
    return entries;
}

} // namespace nimbrel::test
