#include "assistants/NBSuccessAssistant.h"

#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "assistant/TESetupAssistant.h"
#include "assistants/ConfigurationCopy.h"
#include "assistants/widgets/Panels.h"

#include <QFile>
#include <QPushButton>

namespace nimbrel {

QStringList NBSuccessAssistant::orderedSteps() const
{
    return {texts::tr("Congratulations!")};
}

void NBSuccessAssistant::connectControls()
{
    connect(controls().backupButton, &QPushButton::clicked, this,
            &NBSuccessAssistant::backupButton_Click);
}

void NBSuccessAssistant::start()
{
    controller()->nextButton()->setText(texts::tr("Close"));
}

void NBSuccessAssistant::backupButton_Click()
{
    panels::beginSheet(*controller()->window(),
                       panels::SavePanel{.title = texts::tr("Back Up Configuration File"),
                                         .nameFieldValue = texts::tr("Nimbrel Configuration") +
                                                           QLatin1String(".xml"),
                                         .allowedFileTypes = {QStringLiteral("xml")},
                                         .allowsOtherFileTypes = true},
                       [this](const QUrl &url) { backUpTo(url.toLocalFile()); });
}

void NBSuccessAssistant::backUpTo(const QString &path)
{
    const std::string source = QFile::encodeName(_configPath).toStdString();
    const std::string target = QFile::encodeName(path).toStdString();
    if (isSameFile(source, target)) {
        Util::showAlert(texts::tr("This is the configuration file itself, and no backup of it. "
                                  "Please choose another place."));
        return;
    }
    const std::optional<FileError> error = copyConfiguration(source, target);
    Util::showAlert(
        texts::tr("The configuration file has been successfully backed up!\n\nInformation about "
                  "restoring it can be found in the manual or on our website."));
    controls().backupButton->setEnabled(false); // one backup a run
    if (error)
        takeBackSuccess(*error);
}

void NBSuccessAssistant::takeBackSuccess(const FileError &error)
{
    Util::showAlert(
        formatted(texts::tr("The backup could not be made. %@ Please choose another place."),
                  {QString::fromStdString(error.message)}));
    controls().backupButton->setEnabled(true);
}

} // namespace nimbrel
