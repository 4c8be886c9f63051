#include "app/Requests.h"

#include "app/NBAppDelegate.h"
#include "app/NBNimbrelServicesProvider.h"
#include "app/NBStatusItemController.h"
#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/Util.h"

#include <QApplication>
#include <QDir>
#include <QUrl>
#include <QWidget>

#include <chrono>
#include <utility>

namespace nimbrel {

namespace {

using namespace std::chrono_literals;

constexpr auto often = 200ms; // while one waits for an assistant's end

// What has the user now, for the one who starts the program a second time.
void raiseModalWindow()
{
    if (QWidget *window = QApplication::activeModalWidget()) {
        window->raise();
        window->activateWindow();
    }
}

} // namespace

Requests::Requests(NBAppDelegate &delegate) : _delegate(delegate)
{
    _again.setInterval(often);
    connect(&_again, &QTimer::timeout, this, &Requests::takeNext);
}

void Requests::add(const ApplicationRequest &request)
{
    raiseModalWindow();
    if (request.kind == ApplicationRequest::Kind::Activate && QApplication::activeModalWidget())
        return;
    _waiting.append(request);
    _again.start();
    if (_hasBegun)
        QMetaObject::invokeMethod(this, &Requests::takeNext, Qt::QueuedConnection);
}

void Requests::begin()
{
    _hasBegun = true;
    takeNext();
}

void Requests::takeNext()
{
    if (!_hasBegun || _isTaking || QApplication::activeModalWidget() != nullptr)
        return;
    if (_waiting.isEmpty()) {
        _again.stop();
        return;
    }
    _isTaking = true;
    take(_waiting.takeFirst());
    _isTaking = false;
}

void Requests::take(const ApplicationRequest &request)
{
    switch (request.kind) {
    case ApplicationRequest::Kind::Activate:
        _delegate.statusItemController().openPreferencesWindow();
        return;
    case ApplicationRequest::Kind::Open:
        for (const QString &url : request.urls)
            open(url);
        return;
    case ApplicationRequest::Kind::Reveal:
        for (const QString &url : request.urls)
            _delegate.servicesProvider()->showInFolderService(url);
        return;
    }
}

void Requests::open(const QString &url)
{
    const QString path = QDir::cleanPath(QUrl(url).toLocalFile());
    if (QDir::isAbsolutePath(path) && Util::directoryExists(path)) {
        (void)_delegate.application(path);
        return;
    }
    Util::showAlert(
        asFormat(formatted(texts::tr("\"%@\" is no folder on this computer."),
                           {path.isEmpty() || path == QLatin1String(".") ? url : path})),
        texts::tr("This is not a valid Nimbrel Folder."));
}

} // namespace nimbrel
