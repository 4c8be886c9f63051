// A person's session with the volumes, without windows: does what standard input says, one command
// a line, its words apart by tabs, and says what happens on standard output. Passwords come in by
// standard input alone.
//
//   new PATH LABEL PASSWORD     makes, mounts, lists and saves a volume
//   change LABEL OLD NEW        changes its password
//   mount LABEL / unmount LABEL
//   automount N                 starts the mounts and waits for N
//   save / list
//   answer PASSWORD             for the next question
//   await-mounted LABEL / await-unmounted LABEL / await-file PATH
//   write LABEL NAME TEXT / read LABEL NAME
#include "app/Util.h"
#include "fs/MountKeeper.h"
#include "platform/DesktopBookmarks.h"
#include "platform/DesktopWorkspace.h"
#include "platform/Resources.h"
#include "platform/SecretServiceStore.h"
#include "platform/SettingsFile.h"
#include "volume/NBVolumesController.h"
#include "volume/NBVolumesUserInterface.h"

#include <QCoreApplication>
#include <QFile>
#include <QThread>

#include <cstdio>
#include <deque>
#include <functional>
#include <map>

namespace nimbrel {

namespace {

void say(const QStringList &words)
{
    const QByteArray line = words.join(u'\t').toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fflush(stdout);
}

SecureBuffer secret(const QString &text)
{
    return SecureBuffer::copyOf(std::string_view(text.toStdString()));
}

class SaidAlerts final : public AlertPresenter
{
public:
    int runModal(const Alert &alert) override
    {
        say({QStringLiteral("alert"), alert.messageText, alert.informativeText});
        return 1;
    }
};

class Person final : public NBVolumesUserInterface
{
public:
    std::optional<PassphraseAnswer> passphraseFor(const NBNimbrelVolume &volume) override
    {
        say({QStringLiteral("asked"), volume.label()});
        if (answers.empty())
            return std::nullopt;
        PassphraseAnswer answer{secret(answers.front()), true};
        answers.pop_front();
        return answer;
    }
    [[nodiscard]] bool advancedMode() const override { return true; }
    std::optional<NBNewVolumeSettings> newVolumeSettings() override
    {
        return std::exchange(wanted, std::nullopt);
    }
    bool showSuccess(const NBNimbrelVolume &volume) override
    {
        say({QStringLiteral("created"), volume.label()});
        return false;
    }
    void addVolumeAtPath(const QString & /*path*/) override {}

    std::deque<QString> answers;
    std::optional<NBNewVolumeSettings> wanted;
};

class Session final
{
public:
    Session(VolumeServices &services, Person &person);
    // False for a command that there isn't.
    bool perform(const QStringList &command);

private:
    [[nodiscard]] VolumePtr named(const QString &label) const;
    void runUntil(const std::function<bool()> &condition) const;
    void makeNew(const QStringList &words);
    void finish(const QString &what, const QString &label, std::optional<bool> &result) const;

    Person &_person;
    NBVolumesController _controller;
    std::map<QString, std::function<void(const QStringList &)>> _commands;
};

Session::Session(VolumeServices &services, Person &person) : _person(person), _controller(services)
{
    _commands[QStringLiteral("new")] = [this](const QStringList &words) { makeNew(words); };
    _commands[QStringLiteral("change")] = [this](const QStringList &words) {
        const bool changed =
            named(words[1])->changePassphrase(words[2].toStdString(), words[3].toStdString());
        say({QStringLiteral("changed"), words[1], changed ? QStringLiteral("yes") : QString()});
    };
    _commands[QStringLiteral("mount")] = [this](const QStringList &words) {
        std::optional<bool> result;
        _controller.mountVolume(named(words[1]), [&](bool mounted) { result = mounted; });
        finish(QStringLiteral("mount"), words[1], result);
    };
    _commands[QStringLiteral("unmount")] = [this](const QStringList &words) {
        std::optional<bool> result;
        _controller.unmountVolume(named(words[1]), [&](bool unmounted) { result = unmounted; });
        finish(QStringLiteral("unmount"), words[1], result);
    };
    _commands[QStringLiteral("automount")] = [this](const QStringList &words) {
        _controller.automountVolumes();
        runUntil([&] {
            return std::ranges::count_if(_controller.volumes(), &NBNimbrelVolume::isMounted,
                                         [](const VolumePtr &volume) -> const NBNimbrelVolume & {
                                             return *volume;
                                         }) == words[1].toInt();
        });
        say({QStringLiteral("automounted")});
    };
    _commands[QStringLiteral("save")] = [this](const QStringList &) {
        _controller.saveVolumes();
        say({QStringLiteral("saved")});
    };
    _commands[QStringLiteral("list")] = [this](const QStringList &) {
        for (const VolumePtr &volume : _controller.volumes())
            say({QStringLiteral("volume"), volume->label(), volume->path()});
        say({QStringLiteral("listed")});
    };
    _commands[QStringLiteral("answer")] = [this](const QStringList &words) {
        _person.answers.push_back(words[1]);
    };
    _commands[QStringLiteral("await-mounted")] = [this](const QStringList &words) {
        runUntil([&] { return named(words[1])->isMounted(); });
    };
    _commands[QStringLiteral("await-unmounted")] = [this](const QStringList &words) {
        runUntil([&] { return !named(words[1])->isMounted(); });
    };
    _commands[QStringLiteral("await-file")] = [this](const QStringList &words) {
        runUntil([&] { return Util::exists(words[1]); });
    };
    _commands[QStringLiteral("write")] = [this](const QStringList &words) {
        QFile file(named(words[1])->mountPoint() + u'/' + words[2]);
        if (file.open(QIODevice::WriteOnly) && file.write(words[3].toUtf8()) >= 0)
            say({QStringLiteral("written"), words[2]});
    };
    _commands[QStringLiteral("read")] = [this](const QStringList &words) {
        QFile file(named(words[1])->mountPoint() + u'/' + words[2]);
        if (file.open(QIODevice::ReadOnly))
            say({QStringLiteral("read"), words[2], QString::fromUtf8(file.readAll())});
    };
    QObject::connect(&_controller,
                     &NBVolumesController::NBVolumesControllerDidMountVolumeNotification,
                     &_controller, [](const NBNimbrelVolume &volume) {
                         say({QStringLiteral("mounted"), volume.label()});
                     });
    QObject::connect(&_controller,
                     &NBVolumesController::NBVolumesControllerDidUnmountVolumeNotification,
                     &_controller, [](const NBNimbrelVolume &volume) {
                         say({QStringLiteral("unmounted"), volume.label()});
                     });
}

bool Session::perform(const QStringList &command)
{
    const auto found = _commands.find(command.value(0));
    if (found == _commands.end())
        return false;
    found->second(command);
    return true;
}

VolumePtr Session::named(const QString &label) const
{
    for (const VolumePtr &volume : _controller.volumes())
        if (volume->label() == label)
            return volume;
    qFatal("no volume has this label");
}

void Session::runUntil(const std::function<bool()> &condition) const
{
    while (!condition()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        QThread::msleep(2);
    }
}

void Session::makeNew(const QStringList &words)
{
    _person.wanted.emplace();
    _person.wanted->path = words[1];
    _person.wanted->label = words[2];
    _person.wanted->passphrase = secret(words[3]);
    const qsizetype before = _controller.volumes().size();
    _controller.newVolume();
    if (_controller.volumes().size() == before)
        return;
    runUntil([&] { return !_controller.volumes().last()->isBusy(); });
}

void Session::finish(const QString &what, const QString &label, std::optional<bool> &result) const
{
    // A mount that stops tells nobody, so it counts as ended when the volume isn't busy any more.
    runUntil([&] { return result.has_value() || !named(label)->isBusy(); });
    say({what, label, result.value_or(false) ? QStringLiteral("yes") : QStringLiteral("no")});
}

int runSession(MountKeeper &keeper)
{
    SaidAlerts alerts;
    Util::setAlertPresenter(&alerts);
    Person person;
    SecretServiceStore secrets;
    SettingsFile preferences;
    DesktopWorkspace workspace;
    DesktopBookmarks bookmarks;
    const Resources resources;
    preferences.registerDefaults({{preferencesKey::createAliases, true}});
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return 2;
    VolumeServices services{secrets, preferences, workspace, bookmarks, resources, person, &keeper};
    Session session(services, person);
    while (!input.atEnd()) {
        const QString line = QString::fromUtf8(input.readLine()).chopped(1);
        if (!session.perform(line.split(u'\t')))
            return 2;
    }
    return 0;
}

} // namespace

} // namespace nimbrel

int main(int count, char **arguments)
{
    nimbrel::MountKeeper keeper; // before threads and secrets
    nimbrel::setUpSecureHeap();
    QCoreApplication application(count, arguments);
    return nimbrel::runSession(keeper);
}
