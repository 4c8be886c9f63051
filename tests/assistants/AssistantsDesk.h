// A real desktop whose questions are asked by the real windows.
#pragma once

#include "app/NBApplication.h"
#include "assistants/Modal.h"
#include "assistants/NBAssistantsUserInterface.h"
#include "platform/KeyedArchive.h"
#include "support/Files.h"
#include "support/MountInfo.h"
#include "volume/TextConversion.h"
#include "volume/VolumeDesk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QPointer>

namespace nimbrel::test {

class DeskApplication final : public NBApplication
{
public:
    [[nodiscard]] bool advancedMode() const override { return isAdvanced; }
    void setAdvancedMode(bool advanced) override { isAdvanced = advanced; }
    [[nodiscard]] NBVolumesController &volumesController() override { return *controller; }
    bool application(const QString &openFile) override
    {
        handedOver.push_back(openFile);
        return true;
    }
    [[nodiscard]] QString openFile() const override { return file; }
    void setOpenFile(const QString &path) override { file = path; }

    bool isAdvanced = false;
    QStringList handedOver;
    QString file;
    std::unique_ptr<NBVolumesController> controller;
};

class DeskWindows final : public NBAssistantsUserInterface
{
public:
    using NBAssistantsUserInterface::NBAssistantsUserInterface;
    void addVolumeAtPath(const QString &path) override { added.push_back(path); }

    QStringList added;
};

// Closes a modal window that nobody closes, so that a test fails instead of hanging.
class Watchdog final
{
public:
    explicit Watchdog(std::chrono::seconds patience = std::chrono::seconds(20))
    {
        QObject::connect(&_timer, &QTimer::timeout, &_timer, [] {
            if (QWidget *window = QApplication::activeModalWidget()) {
                ADD_FAILURE() << "a window stayed: " << coreText(window->windowTitle());
                window->close();
            }
        });
        _timer.start(patience);
    }

private:
    QTimer _timer;
};

class AssistantsDesk
{
public:
    explicit AssistantsDesk(PrivateDesktopOptions options = {.bus = false, .keyring = false})
        : desk(options)
    {
        application.controller = std::make_unique<NBVolumesController>(services);
    }
    ~AssistantsDesk()
    {
        for (const VolumePtr &volume : application.controller->volumes())
            if (volume->isMounted()) {
                EXPECT_TRUE(desk.unmount(volume));
            }
        application.controller.reset();
        settle();
    }
    AssistantsDesk(const AssistantsDesk &) = delete;
    AssistantsDesk &operator=(const AssistantsDesk &) = delete;

    [[nodiscard]] NBVolumesController &controller() { return *application.controller; }
    [[nodiscard]] QString path(const std::string &name) const { return desk.path(name); }
    // A new encrypted folder, in a record as the archive brings it: no password is known.
    [[nodiscard]] VolumePtr archived(const std::string &name, std::string_view password)
    {
        KeyedRecord record(QStringLiteral("NBNimbrelVolume"));
        desk.makeVolume(name, password)->encode(record);
        return NBNimbrelVolume::withCoder(services, record);
    }
    // The same folder, mounted.
    [[nodiscard]] VolumePtr mounted(const std::string &name, std::string_view password)
    {
        VolumePtr volume = archived(name, password);
        volume->setPassphrase(SecureBuffer::copyOf(password));
        EXPECT_TRUE(desk.mount(volume));
        return volume;
    }
    [[nodiscard]] QStringList alertTexts() const
    {
        QStringList texts;
        for (const Alert &alert : desk.alerts.shown)
            texts.push_back(alert.messageText);
        return texts;
    }

    VolumeDesk desk;
    DeskApplication application;
    DeskWindows windows{application};
    VolumeServices services{
        desk.secrets,         desk.preferences,        desk.workspace,
        desk.bookmarks,       desk.resources,          windows,
        desk.services.keeper, desk.services.mountRoot, desk.services.desktopFolder};
};

// What the person does at a window.
inline Person::Step press(const char *button)
{
    return [button](QWidget &window) { control<QAbstractButton>(window, button).click(); };
}
inline Person::Step type(const char *field, const QString &text)
{
    return [field, text](QWidget &window) { control<QLineEdit>(window, field).setText(text); };
}
inline Person::Step check(const char *box, bool isOn)
{
    return [box, isOn](QWidget &window) { control<QCheckBox>(window, box).setChecked(isOn); };
}
inline const Person::Step next = press("nextButton");
inline const Person::Step previous = press("prevButton");
inline const Person::Step closeWindow = [](QWidget &window) { window.close(); };

// The steps of a whole page, Next included.
using Steps = std::deque<Person::Step>;

[[nodiscard]] inline Steps operator+(Steps first, const Steps &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}
[[nodiscard]] inline Steps located(const QString &name)
{
    return {type("folderNameTextField", name), next};
}
[[nodiscard]] inline Steps newPassword(const QString &password, bool remember = true)
{
    return {type("passphraseTextField", password), type("confirmTextField", password),
            check("rememberButton", remember), next};
}

} // namespace nimbrel::test
