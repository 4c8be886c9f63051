// A desktop session with the assistants and nothing else, for tests that sit at a real display.
//
// Standard input says what to do, one command a line, its words apart by tabs:
//   welcome / new / change / mount / add PATH / unmount / open-options / check-layout / quit
// Standard output says what happens:
//   ready, what observer/Observer.h tells, mounted PATH, unmounted PATH, done NAME, cut NAME (a
//   control of the active window that has too little room for its text)
//
// session [--advanced] [--dark] [--language NAME]
#include "app/NBApplication.h"
#include "app/Translation.h"
#include "app/Util.h"
#include "assistant/Appearance.h"
#include "assistant/Icons.h"
#include "assistant/TESetupAssistant.h"
#include "assistants/NBAdvancedAssistant.h"
#include "assistants/NBAssistantsUserInterface.h"
#include "assistants/flows/ChangePassphrase.h"
#include "assistants/flows/WelcomeFlow.h"
#include "fs/MountKeeper.h"
#include "observer/Facts.h"
#include "observer/Observer.h"
#include "platform/DesktopBookmarks.h"
#include "platform/DesktopWorkspace.h"
#include "platform/Resources.h"
#include "platform/SecretServiceStore.h"
#include "platform/SettingsFile.h"
#include "volume/NBVolumesController.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QSocketNotifier>
#include <QTimer>

#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <unistd.h>

namespace nimbrel {

namespace {

// `which` has no line breaks.
void say(const QString &what, const QString &which = {})
{
    const QString text = which.isNull() ? what : what + u'\t' + which;
    const QByteArray line = text.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fflush(stdout);
}

class UserInterface final : public NBAssistantsUserInterface
{
public:
    using NBAssistantsUserInterface::NBAssistantsUserInterface;
    void addVolumeAtPath(const QString &path) override { say(QStringLiteral("added"), path); }
};

class Session final : public NBApplication
{
public:
    Session(bool advanced, MountKeeper &keeper)
        : _advanced(advanced), _services{_secrets,   _preferences,   _workspace, _bookmarks,
                                         _resources, _userInterface, &keeper}
    {
        _preferences.registerDefaults({{preferencesKey::createAliases, true}});
        _controller = std::make_unique<NBVolumesController>(_services);
        _welcome = std::make_unique<WelcomeFlow>(*this, _services, FolderPicker());
        announceMounts();
        addCommands();
    }

    [[nodiscard]] bool advancedMode() const override { return _advanced; }
    void setAdvancedMode(bool isAdvanced) override { _advanced = isAdvanced; }
    [[nodiscard]] NBVolumesController &volumesController() override { return *_controller; }
    bool application(const QString & /*openFile*/) override { return true; }
    [[nodiscard]] QString openFile() const override { return {}; }
    void setOpenFile(const QString & /*path*/) override {}

    void perform(const QStringList &words)
    {
        const auto found = _commands.find(words.value(0));
        if (found == _commands.end())
            qFatal("no such command: %s", qUtf8Printable(words.value(0)));
        found->second(words);
        say(QStringLiteral("done"), words[0]);
    }

private:
    void announceMounts()
    {
        using Controller = NBVolumesController;
        QObject::connect(_controller.get(),
                         &Controller::NBVolumesControllerDidMountVolumeNotification,
                         _controller.get(), [](const NBNimbrelVolume &volume) {
                             say(QStringLiteral("mounted"), volume.mountPoint());
                         });
        QObject::connect(_controller.get(),
                         &Controller::NBVolumesControllerDidUnmountVolumeNotification,
                         _controller.get(), [](const NBNimbrelVolume &volume) {
                             say(QStringLiteral("unmounted"), volume.mountPoint());
                         });
    }

    void addCommands()
    {
        using Words = const QStringList &;
        _commands[QStringLiteral("welcome")] = [this](Words) { _welcome->showWelcomeAssistant(); };
        _commands[QStringLiteral("new")] = [this](Words) { _controller->newVolume(); };
        _commands[QStringLiteral("change")] = [this](Words) {
            showChangePassphrase(_controller->lastVolume());
        };
        _commands[QStringLiteral("add")] = [this](Words words) {
            _controller->addVolume(NBNimbrelVolume::withPath(_services, words[1]));
        };
        _commands[QStringLiteral("mount")] = [this](Words) {
            _controller->mountVolume(_controller->lastVolume());
        };
        _commands[QStringLiteral("unmount")] = [this](Words) {
            _controller->unmountVolume(_controller->lastVolume());
        };
        _commands[QStringLiteral("open-options")] = [this](Words) { showOptions(); };
        _commands[QStringLiteral("check-layout")] = [](Words) {
            if (const QWidget *window = QApplication::activeWindow())
                for (const QString &control : observer::cutControls(*window))
                    say(QStringLiteral("cut"), control);
        };
        _commands[QStringLiteral("quit")] = [](Words) { QApplication::quit(); };
    }

    // The advanced page alone, as for a folder that exists.
    void showOptions()
    {
        const auto engine = TESetupAssistant::initMini();
        const auto page = assistant<NBAdvancedAssistant>(*this);
        page->setIsOpen(true);
        engine->addAssistant(page);
        engine->setModal(true);
        engine->run();
    }

    bool _advanced;
    UserInterface _userInterface{*this};
    SecretServiceStore _secrets;
    SettingsFile _preferences;
    DesktopWorkspace _workspace;
    DesktopBookmarks _bookmarks;
    Resources _resources;
    VolumeServices _services;
    std::unique_ptr<NBVolumesController> _controller;
    std::unique_ptr<WelcomeFlow> _welcome;
    std::map<QString, std::function<void(const QStringList &)>> _commands;
};

// Commands come in while the event loop runs, also while an assistant is up.
class CommandInput final
{
public:
    explicit CommandInput(Session &session) : _notifier(STDIN_FILENO, QSocketNotifier::Read)
    {
        QObject::connect(&_notifier, &QSocketNotifier::activated, &_notifier,
                         [this, &session] { read(session); });
    }

private:
    void read(Session &session)
    {
        char bytes[4096];
        const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (count <= 0)
            return QApplication::quit();
        _text.append(bytes, static_cast<qsizetype>(count));
        while (const qsizetype end = _text.indexOf('\n') + 1) {
            const QStringList words = QString::fromUtf8(_text.left(end - 1)).split(u'\t');
            _text.remove(0, end);
            QTimer::singleShot(0, &_notifier, [&session, words] { session.perform(words); });
        }
    }

    QSocketNotifier _notifier;
    QByteArray _text;
};

int runSession(QApplication &application, MountKeeper &keeper)
{
    QCommandLineParser parser;
    const QCommandLineOption advanced(QStringLiteral("advanced"));
    const QCommandLineOption dark(QStringLiteral("dark"));
    const QCommandLineOption language(QStringLiteral("language"), {}, QStringLiteral("name"),
                                      QStringLiteral("en"));
    parser.addOptions({advanced, dark, language});
    parser.process(application);
    translation::install({parser.value(language)});
    appearance::apply(parser.isSet(dark) ? appearance::ColorScheme::Dark
                                         : appearance::ColorScheme::Light);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(icons::named(QStringLiteral("NSApplicationIcon")));
    observer::Observer observer(&say);
    application.installEventFilter(&observer);
    Session session(parser.isSet(advanced), keeper);
    const CommandInput input(session);
    say(QStringLiteral("ready"));
    return QApplication::exec();
}

} // namespace

} // namespace nimbrel

int main(int count, char **arguments)
{
    nimbrel::MountKeeper keeper; // before threads and secrets
    nimbrel::setUpSecureHeap();
    QApplication application(count, arguments);
    return nimbrel::runSession(application, keeper);
}
