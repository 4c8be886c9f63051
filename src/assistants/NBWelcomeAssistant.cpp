#include "assistants/NBWelcomeAssistant.h"

#include "app/Texts.h"
#include "app/Util.h"
#include "assistant/TESetupAssistant.h"
#include "assistants/views/WelcomeMatrix.h"
#include "assistants/widgets/Panels.h"
#include "assistants/widgets/PathControl.h"
#include "config/ConfigurationLookup.h"
#include "volume/TextConversion.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QStandardPaths>

namespace nimbrel {

namespace {

QUrl documentsFolder()
{
    return QUrl::fromLocalFile(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
}

QString notValidText()
{
    return texts::tr(
        "This is not a valid Nimbrel Folder. If the folder is being synchronized right now, "
        "please wait until the whole folder has been synchronized and try again.");
}

bool holdsConfiguration(const QString &folder)
{
    return Util::fileExists(pathIn(folder, qtText(configurationFileName))) ||
           Util::fileExists(pathIn(folder, qtText(oldConfigurationFileName)));
}

} // namespace

QStringList NBWelcomeAssistant::orderedSteps() const
{
    return {texts::tr("Welcome to Nimbrel")};
}

void NBWelcomeAssistant::connectControls()
{
    controls().warning.text->setText(notValidText()); // the longest one has its room from the start
    connect(controls().welcomeMatrix, &WelcomeMatrix::selectionChanged, this,
            &NBWelcomeAssistant::welcomeMatrixSelectionChanged);
    connect(controls().chooseButton, &QPushButton::clicked, this,
            &NBWelcomeAssistant::chooseFolder);
}

void NBWelcomeAssistant::start()
{
    controls().pathControl->setURL(documentsFolder());
    controls().warning.useCautionImage();
}

bool NBWelcomeAssistant::wantsNewFolder() const
{
    return controls().welcomeMatrix->selectedRow() == 0;
}

void NBWelcomeAssistant::welcomeMatrixSelectionChanged()
{
    controls().setFolderControlsHidden(wantsNewFolder());
    if (wantsNewFolder())
        controls().warning.setHidden(true);
    else
        checkRoot();
}

bool NBWelcomeAssistant::checkRoot()
{
    const PathControl &path = *controls().pathControl;
    if (path.URL().isEmpty())
        setWarningValue(texts::tr("Please choose a valid folder."));
    else if (!Util::directoryExists(path.path()))
        setWarningValue(texts::tr("The folder you choosed does not exist."));
    else if (!holdsConfiguration(path.path()))
        setWarningValue(notValidText());
    else {
        controls().warning.setHidden(true);
        return true;
    }
    return false;
}

void NBWelcomeAssistant::setWarningValue(const QString &text)
{
    controls().warning.text->setText(text);
    controls().warning.setHidden(false);
}

void NBWelcomeAssistant::nextPressed()
{
    if (wantsNewFolder())
        AssistantPage::nextPressed();
    else
        openExistingFolder();
}

// The remaining steps are for a new folder.
void NBWelcomeAssistant::openExistingFolder()
{
    if (!checkRoot()) {
        Util::showAlert(controls().warning.text->text());
        return;
    }
    controller()->setFinished(true);
    controller()->reset();
}

void NBWelcomeAssistant::chooseFolder()
{
    QWidget &window = *controller()->window();
    const auto use = [page = QPointer(this)](const QUrl &url) {
        if (page)
            page->useFolder(url);
    };
    if (_pickFolder) {
        _pickFolder(window, [use](const QString &path) { use(QUrl::fromLocalFile(path)); });
        return;
    }
    panels::beginSheet(window,
                       panels::OpenPanel{.title = texts::tr("Open a Nimbrel Folder"),
                                         .canChooseDirectories = true,
                                         .directory = controls().pathControl->URL()},
                       use);
}

void NBWelcomeAssistant::useFolder(const QUrl &url)
{
    controls().pathControl->setURL(url);
    checkRoot();
}

} // namespace nimbrel
