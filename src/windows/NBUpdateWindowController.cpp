#include "windows/NBUpdateWindowController.h"

#include "app/Log.h"
#include "app/TextFormat.h"
#include "app/Texts.h"
#include "platform/Workspace.h"
#include "windows/WebAddress.h"
#include "windows/views/NotesBrowser.h"
#include "windows/views/UpdateWindow.h"

#include <QLabel>
#include <QLocale>
#include <QPushButton>

namespace nimbrel {

namespace {

// One line of foreign text, no longer than a window's.
QString oneLine(const QString &text)
{
    constexpr qsizetype longest = 120; // characters
    return text.left(longest * 4).simplified().left(longest);
}

QString runningVersion()
{
    return Log::versionText().section(u' ', 0, 0);
}

QString versionsText(const UpdateOffer &offer)
{
    const QString version = oneLine(offer.version);
    if (!offer.published.isValid())
        return formatted(texts::tr("Version %@ can be downloaded. You have version %@."),
                         {version, runningVersion()});
    const QString date =
        QLocale().toString(offer.published.toLocalTime().date(), QLocale::LongFormat);
    return formatted(texts::tr("Version %@ of %@ can be downloaded. You have version %@."),
                     {version, date, runningVersion()});
}

} // namespace

NBUpdateWindowController::NBUpdateWindowController(Workspace &workspace) : _workspace(workspace) {}

NBUpdateWindowController::~NBUpdateWindowController() = default;

void NBUpdateWindowController::show(const UpdateOffer &offer)
{
    _offer = offer;
    if (!_window)
        makeWindow();
    fill();
    _window->show();
    _window->raise();
    _window->activateWindow();
}

void NBUpdateWindowController::makeWindow()
{
    _window = std::make_unique<UpdateWindow>();
    connect(_window->downloadButton, &QPushButton::clicked, this,
            &NBUpdateWindowController::openPage);
    connect(_window->notesView, &NotesBrowser::anchorClicked, this,
            &NBUpdateWindowController::openLink);
}

void NBUpdateWindowController::fill()
{
    const QString title = oneLine(_offer.title);
    _window->titleTextField->setText(
        title.isEmpty() ? texts::tr("A new version of Nimbrel is available.") : title);
    _window->versionTextField->setText(versionsText(_offer));
    _window->notesView->setNotes(_offer.notes);
    _window->notesView->setHidden(_offer.notes.isEmpty());
    _window->downloadButton->setEnabled(isWebAddress(_offer.page));
    _window->downloadButton->setFocus();
}

void NBUpdateWindowController::openPage()
{
    openLink(_offer.page);
    _window->accept();
}

void NBUpdateWindowController::openLink(const QUrl &url)
{
    if (isWebAddress(url))
        _workspace.openURL(url);
}

} // namespace nimbrel
