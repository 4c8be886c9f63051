#include "windows/NBMobileWindowController.h"

#include "app/Texts.h"
#include "platform/Workspace.h"
#include "windows/WebAddress.h"
#include "windows/views/MobileWindow.h"

#include <QLabel>
#include <QPushButton>

#include <utility>

namespace nimbrel {

namespace {

// Null when there is nothing to say.
QString reasonText(bool hasAppStore, bool hasGooglePlay)
{
    if (hasAppStore && hasGooglePlay)
        return {};
    if (hasGooglePlay)
        return texts::tr("This build of Nimbrel has no address in the App Store.");
    if (hasAppStore)
        return texts::tr("This build of Nimbrel has no address in Google Play.");
    return texts::tr("This build of Nimbrel has no addresses in these stores. Whoever builds it "
                     "can give it some.");
}

} // namespace

MobileAddresses MobileAddresses::ofThisBuild()
{
    return {.appStore = QUrl(QStringLiteral(NIMBREL_APP_STORE_URL)),
            .googlePlay = QUrl(QStringLiteral(NIMBREL_GOOGLE_PLAY_URL))};
}

NBMobileWindowController::NBMobileWindowController(Workspace &workspace, MobileAddresses addresses)
    : _workspace(workspace), _addresses(std::move(addresses))
{
}

NBMobileWindowController::~NBMobileWindowController()
{
    windowWillClose();
}

// The window, and this, may go while it is on show.
void NBMobileWindowController::runModal(QWidget *parent)
{
    const QPointer<MobileWindow> window = new MobileWindow(parent);
    _window = window;
    connectControls();
    showWhatIsMissing();
    window->exec();
    delete window;
}

void NBMobileWindowController::connectControls()
{
    connect(_window->downloadFromAppStoreButton, &QPushButton::clicked, this,
            &NBMobileWindowController::downloadFromAppStore);
    connect(_window->downloadFromGooglePlayButton, &QPushButton::clicked, this,
            &NBMobileWindowController::downloadFromGooglePlay);
    connect(_window->closeButton, &QPushButton::clicked, this,
            &NBMobileWindowController::windowWillClose);
}

void NBMobileWindowController::showWhatIsMissing()
{
    const bool hasAppStore = isWebAddress(_addresses.appStore);
    const bool hasGooglePlay = isWebAddress(_addresses.googlePlay);
    _window->downloadFromAppStoreButton->setEnabled(hasAppStore);
    _window->downloadFromGooglePlayButton->setEnabled(hasGooglePlay);
    _window->reasonTextField->setText(reasonText(hasAppStore, hasGooglePlay));
    _window->reasonTextField->setHidden(hasAppStore && hasGooglePlay);
}

void NBMobileWindowController::downloadFromAppStore()
{
    _workspace.openURL(_addresses.appStore);
}

void NBMobileWindowController::downloadFromGooglePlay()
{
    _workspace.openURL(_addresses.googlePlay);
}

// The end of the window ends its modal run, whatever closes it.
void NBMobileWindowController::windowWillClose()
{
    if (!_window.isNull())
        _window->reject();
}

} // namespace nimbrel
