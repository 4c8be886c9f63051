#include "assistants/NBRootAssistant.h"

#include "app/NBApplication.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "assistant/TESetupAssistant.h"
#include "assistants/widgets/LocationsMenu.h"
#include "assistants/widgets/Panels.h"
#include "assistants/widgets/PathControl.h"
#include "assistants/widgets/PopUpButton.h"
#include "discovery/NBCloudServiceDiscoveryController.h"
#include "volume/PathExtension.h"

#include <QLabel>
#include <QLineEdit>

namespace nimbrel {

namespace {

// The folder's name gets the extension in any case. A URL that isn't there stays so.
QUrl folderURL(const QUrl &location, const QString &name)
{
    if (location.isEmpty() || name.isEmpty())
        return location;
    const QString folder = location.toLocalFile();
    const QString separator = folder.endsWith(u'/') ? QString() : QStringLiteral("/");
    return QUrl::fromLocalFile(folder + separator + name + u'.' + folderExtension);
}

} // namespace

QStringList NBRootAssistant::orderedSteps() const
{
    return {texts::tr("Create a new Nimbrel Folder")};
}

void NBRootAssistant::connectControls()
{
    connect(controls().folderNameTextField, &QLineEdit::textChanged, this,
            &NBRootAssistant::controlTextDidChange);
    connect(controls().foldersPopUpButton, &QComboBox::activated, this, [this](int index) {
        if (index == _otherItem)
            chooseOtherPath();
        else
            selectionChanged();
    });
}

void NBRootAssistant::start()
{
    controls().folderNameTextField->setFocus();
    controls().warning.useCautionImage();
    if (controls().foldersPopUpButton->count() == 1) // else filled on an earlier entry
        fillLocations();
    updateRootPath();
}

void NBRootAssistant::fillLocations()
{
    QComboBox &popUp = *controls().foldersPopUpButton;
    locations::setUpDocuments(popUp);
    if (const auto services = NBCloudServiceDiscoveryController().availableServices()) {
        popUp.insertSeparator(popUp.count());
        for (const auto &service : *services)
            locations::add(popUp, service->name(), service->storageURL());
        popUp.insertSeparator(popUp.count());
    }
    _otherItem = locations::addOther(popUp);
}

void NBRootAssistant::updateRootPath()
{
    const QUrl location = controls().foldersPopUpButton->currentData().toUrl();
    controls().rootPathControl->setURL(folderURL(location, controls().folderNameTextField->text()));
    const bool isValid = checkRootPath();
    controls().warning.setHidden(isValid);
}

bool NBRootAssistant::checkRootPath()
{
    const auto fail = [this](const QString &text) {
        controls().warning.text->setText(text);
        return false;
    };
    const QString path = controls().rootPathControl->path();
    if (Util::fileExists(path))
        return fail(texts::tr("The location you've choosed does not exist."));
    if (controls().folderNameTextField->text().trimmed().isEmpty())
        return fail(texts::tr("Please enter a valid folder name."));
    if (Util::exists(path))
        return fail(texts::tr("A file or folder with this name already exists."));
    return true;
}

// "Other…" has no location until one is chosen, which none of the rules notices: the folder would
// be made at "/".
void NBRootAssistant::nextPressed()
{
    if (controls().rootPathControl->URL().isEmpty()) {
        Util::showAlert(texts::tr("Please choose a location for the folder."));
        return;
    }
    if (!_application.advancedMode() && !checkRootPath()) {
        Util::showAlert(controls().warning.text->text());
        return;
    }
    AssistantPage::nextPressed();
}

void NBRootAssistant::chooseOtherPath()
{
    QComboBox &popUp = *controls().foldersPopUpButton;
    panels::beginSheet(*controller()->window(),
                       {.title = texts::tr("Choose a Location"),
                        .canChooseDirectories = true,
                        .canCreateDirectories = true,
                        .directory = popUp.itemData(_otherItem).toUrl()},
                       [this, &popUp](const QUrl &url) {
                           popUp.setItemData(_otherItem, url);
                           updateRootPath();
                       });
}

} // namespace nimbrel
