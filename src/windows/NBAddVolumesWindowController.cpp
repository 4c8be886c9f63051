#include "windows/NBAddVolumesWindowController.h"

#include "app/NBApplication.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "assistants/widgets/Panels.h"
#include "assistants/widgets/PathControl.h"
#include "assistants/widgets/PopUpButton.h"
#include "windows/views/AddVolumesWindow.h"

#include <QItemSelectionModel>
#include <QPushButton>
#include <QTableView>

#include <utility>

namespace nimbrel {

NBAddVolumesWindowController::NBAddVolumesWindowController(NBApplication &application,
                                                           VolumeServices &services)
    : _application(application), _services(services)
{
}

NBAddVolumesWindowController::~NBAddVolumesWindowController()
{
    closeWindow();
}

void NBAddVolumesWindowController::beginSheetModalForWindow(QWidget &window,
                                                            CompletitionHandler completionHandler)
{
    _completitionHandler = std::move(completionHandler);
    _window = new AddVolumesWindow(_folders, &window);
    _window->setAttribute(Qt::WA_DeleteOnClose);
    connectControls();
    windowDidLoad();
    _window->open();
}

AddVolumesWindow *NBAddVolumesWindowController::window() const
{
    return _window;
}

void NBAddVolumesWindowController::connectControls()
{
    connect(_window->foldersPopUpButton, &QComboBox::activated, this, [this](int index) {
        if (index == _otherItem)
            chooseOtherPath();
        else
            selectionChanged();
    });
    connect(_window->foldersTableView, &QTableView::doubleClicked, this,
            &NBAddVolumesWindowController::addVolume);
    connect(_window->addVolumeButton, &QPushButton::clicked, this,
            &NBAddVolumesWindowController::addVolume);
    connect(_window->cancelButton, &QPushButton::clicked, this,
            &NBAddVolumesWindowController::closeWindow);
    const auto windowEnded = [this] {
        _scan.reset();
        _window = nullptr;
    };
    connect(_window, &QDialog::finished, this, windowEnded); // whatever ends it
    connect(_window, &QObject::destroyed, this, windowEnded);
}

void NBAddVolumesWindowController::closeWindow()
{
    if (AddVolumesWindow *const window = std::exchange(_window, nullptr))
        window->reject();
}

void NBAddVolumesWindowController::updateRootPath()
{
    _window->rootPathControl->setURL(_window->foldersPopUpButton->currentData().toUrl());
}

void NBAddVolumesWindowController::selectionChanged()
{
    _lastSelectedIndex = _window->foldersPopUpButton->currentIndex();
    updateRootPath();
    reloadData();
}

void NBAddVolumesWindowController::addVolume()
{
    const QModelIndexList rows = _window->foldersTableView->selectionModel()->selectedRows();
    if (rows.isEmpty()) {
        Util::showAlert(
            texts::tr("Please select a Nimbrel Folder from the list or browse for a custom one."));
        return;
    }
    const QUrl url = foldersHere().value(rows.first().row());
    if (url.isEmpty() || !validateURL(url))
        return;
    closeWindow();
    handOver(pathOf(url));
}

void NBAddVolumesWindowController::chooseOtherPath()
{
    const QPointer<NBAddVolumesWindowController> self = this; // a panel may outlive it
    panels::beginSheet(
        *_window,
        {.title = texts::tr("Choose a Nimbrel Folder"),
         .canChooseDirectories = true,
         .validateURL = [self](const QUrl &url) { return self && self->validateURL(url); }},
        [self](const QUrl &url) {
            if (self)
                self->otherPathChosen(url);
        },
        [self] {
            if (self)
                self->otherPathCancelled();
        });
}

void NBAddVolumesWindowController::otherPathChosen(const QUrl &url)
{
    closeWindow();
    QString path = std::exchange(_selectedPath, {});
    if (_application.advancedMode() || path.isEmpty())
        path = pathOf(url);
    handOver(path);
}

void NBAddVolumesWindowController::otherPathCancelled()
{
    if (_window.isNull())
        return;
    _window->foldersPopUpButton->setCurrentIndex(_lastSelectedIndex);
    selectionChanged();
}

void NBAddVolumesWindowController::handOver(const QString &path)
{
    const CompletitionHandler handler = std::exchange(_completitionHandler, {});
    if (handler) // it may delete this
        handler(path);
}

} // namespace nimbrel
