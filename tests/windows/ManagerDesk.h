// A real desktop with the manager window on it.
#pragma once

#include "assistants/AssistantsDesk.h"
#include "volume/StoredList.h"
#include "windows/NBVolumesManagerWindowController.h"
#include "windows/NBVolumesTableViewController.h"
#include "windows/UpdateChecks.h"
#include "windows/views/VolumesManagerWindow.h"

#include <QAction>
#include <QListView>
#include <QToolBar>

namespace nimbrel::test {

class NoUpdates final : public UpdateChecks
{
public:
    [[nodiscard]] QString host() const override { return {}; }
    [[nodiscard]] bool isChecking() const override { return false; }
    [[nodiscard]] QDateTime lastUpdateCheckDate() const override { return {}; }
    void checkForUpdates() override {}
};

using Sender = NBVolumesManagerWindowController::Sender;

class ManagerDesk : public ::testing::Test
{
protected:
    explicit ManagerDesk(PrivateDesktopOptions options = {.bus = false, .keyring = false})
        : desk(options)
    {
    }
    void TearDown() override
    {
        for (const VolumePtr &volume : std::as_const(pretended))
            volume->setIsMounted(false);
    }

    // The window in that mode, on show.
    void show(bool isAdvanced)
    {
        desk.application.isAdvanced = isAdvanced;
        manager->showWindow();
    }
    // A record in the list; without a folder, and only said to be mounted.
    VolumePtr pretend(const QString &label, bool isMounted = false, bool storesPassphrase = false)
    {
        VolumePtr volume = NBNimbrelVolume::withPath(desk.services, path(label + u".nmc"_qs));
        volume->setLabel(label);
        volume->setStorePassphrase(storesPassphrase);
        volume->setIsMounted(isMounted);
        pretended += volume;
        volumes().append(volume);
        return volume;
    }
    // A real folder in the list, whose password is known.
    VolumePtr listed(const std::string &name)
    {
        VolumePtr volume = desk.archived(name, password);
        volume->setPassphrase(SecureBuffer::copyOf(password));
        volumes().append(volume);
        return volume;
    }
    // The same, mounted through the controller.
    VolumePtr mounted(const std::string &name)
    {
        VolumePtr volume = listed(name);
        desk.controller().mountVolume(volume);
        EXPECT_TRUE(eventLoopUntil([&] { return volume->isMounted(); }));
        settle();
        return volume;
    }
    void select(int row)
    {
        window().tableView->setCurrentIndex(window().tableView->model()->index(row, 0));
    }
    [[nodiscard]] QString path(const QString &name) const { return desk.path(coreText(name)); }
    [[nodiscard]] QList<VolumePtr> &volumes() { return desk.controller().volumes(); }
    [[nodiscard]] VolumesManagerWindow &window()
    {
        return dynamic_cast<VolumesManagerWindow &>(*manager->window());
    }
    [[nodiscard]] NBVolumesTableViewController &table() { return *manager->tableViewController(); }
    [[nodiscard]] std::vector<Alert> &alerts() { return desk.desk.alerts.shown; }
    void answer(int button) { desk.desk.alerts.answers.push_back(button); }
    [[nodiscard]] const RecordedWorkspace &workspace() const { return desk.desk.workspace; }
    // Headline, detail and buttons of the only alert, which then counts no more.
    QStringList told()
    {
        if (alerts().size() != 1) {
            ADD_FAILURE() << alerts().size()
                          << " alerts: " << coreText(desk.alertTexts().join(u" | "_qs));
            return {};
        }
        const Alert alert = alerts().front();
        alerts().clear();
        return QStringList{alert.messageText, alert.informativeText} + alert.buttons;
    }
    [[nodiscard]] bool isEnabled(const char *identifier)
    {
        return control<QAction>(window(), identifier).isEnabled();
    }
    [[nodiscard]] QStringList enabledItems()
    {
        QStringList enabled;
        for (const QAction *item : window().toolbar->actions())
            if (!item->text().isEmpty() && item->isEnabled())
                enabled += item->objectName();
        return enabled;
    }

    const std::string password = "the right password";
    QList<VolumePtr> pretended;
    AssistantsDesk desk;
    Watchdog watchdog;
    NoUpdates updates;
    WindowServices services{desk.application, desk.services, updates};
    std::unique_ptr<NBVolumesManagerWindowController> manager =
        std::make_unique<NBVolumesManagerWindowController>(services);
};

class MountingManagerDesk : public ManagerDesk
{
protected:
    using ManagerDesk::ManagerDesk;
    void SetUp() override { NIMBREL_NEED_MOUNTS(); }
};

} // namespace nimbrel::test
