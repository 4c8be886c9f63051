// A desktop session with the assistants and nothing else, for tests that sit at a real display.
//
// Standard input says what to do, one command a line, its words apart by tabs:
//   welcome / new / change / mount / add PATH / unmount / open-options / check-layout / quit
// Standard output says what happens:
//   ready, window TITLE, page NAME, focus NAME, alert TEXT, mounted PATH, unmounted PATH, done
//   NAME, cut NAME (a control of the active window that has too little room for its text)
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
#include "platform/DesktopBookmarks.h"
#include "platform/DesktopWorkspace.h"
#include "platform/Resources.h"
#include "platform/SecretServiceStore.h"
#include "platform/SettingsFile.h"
#include "volume/NBVolumesController.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QEvent>
#include <QMessageBox>
#include <QSocketNotifier>
#include <QTimer>
#include <QToolButton>

#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <unistd.h>

namespace nimbrel {

namespace {

void say(const QString &what, const QString &which = {})
{
    QString text = which.isNull() ? what : what + u'\t' + which;
    const QByteArray line = text.replace(u'\n', u' ').toUtf8() + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fflush(stdout);
}

// Tells which window came up and which control has the keyboard.
class Observer final : public QObject
{
public:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::WindowActivate)
            tellWindow(object);
        else if (event->type() == QEvent::FocusIn && object->isWidgetType())
            say(QStringLiteral("focus"), nameOf(*object));
        return false;
    }

private:
    static QString nameOf(const QObject &object)
    {
        return object.objectName().isEmpty() ? QString::fromLatin1(object.metaObject()->className())
                                             : object.objectName();
    }

    static void tellWindow(QObject *object)
    {
        auto *window = qobject_cast<QWidget *>(object);
        if (window == nullptr || !window->isWindow())
            return;
        if (const auto *box = qobject_cast<QMessageBox *>(window))
            say(QStringLiteral("alert"), box->text());
        else
            say(QStringLiteral("window"), window->windowTitle());
    }
};

bool isCut(const QWidget &control)
{
    if (control.hasHeightForWidth())
        return control.height() < control.heightForWidth(control.width());
    const QSize needed = control.minimumSizeHint();
    return control.width() < needed.width() || control.height() < needed.height();
}

void tellCutControls(const QWidget &window)
{
    for (const QWidget *control : window.findChildren<QWidget *>())
        if (control->isVisible() && !qobject_cast<const QToolButton *>(control) && isCut(*control))
            say(QStringLiteral("cut"),
                control->objectName() + u' ' + QLatin1String(control->metaObject()->className()));
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
    [[nodiscard]] NBVolumesController &volumesController() override { return *_controller; }

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
            if (QWidget *window = QApplication::activeWindow())
                tellCutControls(*window);
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
    Observer observer;
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
