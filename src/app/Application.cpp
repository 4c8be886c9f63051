#include "app/Application.h"

#include "app/ApplicationBus.h"
#include "app/InstanceLock.h"
#include "app/NBAppDelegate.h"
#include "app/NBStatusItemController.h"
#include "app/OrderlyEnd.h"
#include "app/ProgramArguments.h"
#include "app/Requests.h"
#include "app/SessionEnd.h"
#include "app/SystemLog.h"
#include "app/TerminationSignals.h"
#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/Translation.h"
#include "app/Util.h"
#include "assistant/Appearance.h"
#include "assistant/BundleAdditions.h"
#include "assistant/Icons.h"
#include "crypto/SecureBuffer.h"
#include "fs/ProcessGuards.h"
#include "platform/DesktopBookmarks.h"
#include "platform/DesktopWorkspace.h"
#include "platform/Resources.h"
#include "platform/SecretServiceStore.h"
#include "platform/SessionBusAddress.h"
#include "platform/SettingsFile.h"
#include "volume/TextConversion.h"

#include <QApplication>
#include <QDBusConnection>
#include <QLocale>
#include <QNetworkProxyFactory>
#include <QTimer>

#include <chrono>
#include <cstdlib>
#include <system_error>
#include <thread>

namespace nimbrel {

namespace {

using namespace std::chrono_literals;

// The real desktop, as the delegate wants it.
struct Platform
{
    SecretServiceStore secrets;
    SettingsFile preferences;
    DesktopWorkspace workspace;
    DesktopBookmarks bookmarks;
    Resources resources;
};

// Before the process forbids others to look at it: the portal looks who asks.
void takeDesktopsLook()
{
    if (!sessionBusAddress().empty())
        appearance::apply(appearance::preferredColorScheme(QDBusConnection::sessionBus()));
    else
        appearance::apply(appearance::ColorScheme::Light);
    QApplication::setWindowIcon(icons::named(QStringLiteral("NSApplicationIcon")));
}

void setUpProcess()
{
    QCoreApplication::setApplicationName(QStringLiteral("Nimbrel"));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.nimbrel.Nimbrel"));
    QApplication::setQuitOnLastWindowClosed(false);
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    installSystemLog();
    translation::install(QLocale::system().uiLanguages());
    takeDesktopsLook();
    if (const int error = forbidDumps(); error != 0)
        throw std::system_error(error, std::generic_category(),
                                "This process can't be kept out of core files");
    setUpSecureHeap();
}

// What still waits then waits for a disk or a network folder that doesn't answer; the keeper sees
// to the disks.
void endInTime(int status)
{
    constexpr auto longest = 15s;
    std::thread([status, longest] {
        std::this_thread::sleep_for(longest);
        std::_Exit(status);
    }).detach();
}

// Who came first keeps the name; a start in the same moment finds it now.
int handOverToWinner(const ApplicationRequest &request)
{
    if (runningApplication::handOver(request) == runningApplication::HandOver::Done)
        return EXIT_SUCCESS;
    Util::showAlert(texts::tr("Nimbrel is running and doesn't answer. End it, then try again."));
    return EXIT_FAILURE;
}

// A file's counterpart is shown by the program that has its disk mounted.
int refuseToReveal()
{
    Util::showAlert(
        texts::tr("This file could not be located in any of the mounted Nimbrel disks."),
        texts::tr("File not found!"));
    return EXIT_FAILURE;
}

class Run final
{
public:
    Run(const ProgramArguments &arguments, ApplicationBus &bus, MountKeeper &keeper)
        : _arguments(arguments),
          _delegate({_platform.secrets, _platform.preferences, _platform.workspace,
                     _platform.bookmarks, _platform.resources, &keeper})
    {
        QObject::connect(&bus, &ApplicationBus::requested, &_requests, &Requests::add);
        _delegate.statusItemController().setQuitHandler([this] { _end.quit(); });
        bundle::setTerminationHandler([this] { _end.finish(); });
    }
    ~Run() { bundle::setTerminationHandler({}); }
    Run(const Run &) = delete;
    Run &operator=(const Run &) = delete;

    // All of it in the event loop, so that a signal ends it at any question that the start asks.
    int run()
    {
        QTimer::singleShot(0, &_delegate, [this] { start(); });
        const int status = QApplication::exec();
        _end.finish();
        endInTime(status);
        return status;
    }

private:
    void start()
    {
        if (_end.isTerminating())
            return;
        _delegate.applicationWillFinishLaunching();
        if (_end.isTerminating())
            return;
        if (_arguments.request.kind == ApplicationRequest::Kind::Open)
            _requests.add(_arguments.request);
        _delegate.applicationDidFinishLaunching();
        if (_end.isTerminating())
            return;
        _delegate.statusItemController().showWithoutTray(_arguments.wasLaunchedAtLogin);
        _requests.begin();
    }

    const ProgramArguments &_arguments;
    Platform _platform;
    NBAppDelegate _delegate;
    OrderlyEnd _end{_delegate};
    Requests _requests{_delegate};
    TerminationSignals _signals{[this] { _end.terminate(); }};
    SessionEnd _sessionEnd{_delegate, _end};
};

} // namespace

int runApplication(int count, char **texts, const ProgramArguments &arguments, MountKeeper &keeper)
{
    QApplication application(count, texts);
    setUpProcess();
    if (arguments.request.kind == ApplicationRequest::Kind::Reveal)
        return refuseToReveal();
    ApplicationBus bus;
    if (bus.takeName() == ApplicationBus::Ownership::Anothers)
        return handOverToWinner(arguments.request);
    InstanceLock lock;
    if (const std::optional<QString> trouble = lock.take()) {
        Util::showAlert(*trouble);
        return EXIT_FAILURE;
    }
    return Run(arguments, bus, keeper).run();
}

} // namespace nimbrel
