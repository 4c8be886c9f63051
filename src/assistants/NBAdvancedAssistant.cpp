#include "assistants/NBAdvancedAssistant.h"

#include "app/NBApplication.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "assistant/TESetupAssistant.h"
#include "assistants/NBRootAssistant.h"
#include "assistants/widgets/Panels.h"
#include "platform/SystemFacts.h"
#include "volume/NBVolumesController.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <limits>

namespace nimbrel {

namespace {

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

// intValue
// The number that a text begins with, behind blanks and a sign; 0 where none is. What is too large
// becomes the nearest that there is.
qint32 intValue(QStringView text)
{
    using Limits = std::numeric_limits<qint32>;
    text = text.trimmed();
    const bool isNegative = text.startsWith(u'-');
    if (isNegative || text.startsWith(u'+'))
        text = text.sliced(1);
    qint64 value = 0;
    for (const QChar character : text) {
        if (!isDigit(character) || value > Limits::max())
            break;
        value = value * 10 + character.digitValue();
    }
    value = isNegative ? -value : value;
    return static_cast<qint32>(std::clamp<qint64>(value, Limits::min(), Limits::max()));
}

bool fail(const QString &text)
{
    Util::showAlert(text);
    return false;
}

} // namespace

QStringList NBAdvancedAssistant::orderedSteps() const
{
    return {texts::tr("Modify advanced options")};
}

void NBAdvancedAssistant::setWorkingVolume(std::shared_ptr<NBNimbrelVolume> volume)
{
    _workingVolume = std::move(volume);
}

void NBAdvancedAssistant::setIsOpen(bool isOpen)
{
    _isOpen = isOpen;
    if (view() != nullptr)
        controls().setCipherHidden(isOpen); // before the window takes its size
}

void NBAdvancedAssistant::connectControls()
{
    controls().setCipherHidden(_isOpen);
    // Clicks alone: a flow that fills the controls doesn't set these off.
    connect(controls().configButton, &QCheckBox::clicked, this,
            &NBAdvancedAssistant::configButton_Click);
    connect(controls().configBrowseButton, &QPushButton::clicked, this,
            &NBAdvancedAssistant::configBrowseButton_Click);
    connect(controls().spotlightButton, &QCheckBox::clicked, this,
            &NBAdvancedAssistant::selectEnableSpotlight);
}

void NBAdvancedAssistant::start()
{
    takeLabelOfRootAssistant();
    controls().labelTextField->setFocus();
    controller()->nextButton()->setText(texts::tr("Finish"));
    controls().algorithmButton->setCurrentText(QStringLiteral("AES-256"));
    controls().filenameEncryptionButton->setChecked(true);
    if (_isOpen)
        showAsOpen();
}

void NBAdvancedAssistant::takeLabelOfRootAssistant()
{
    const auto *root = qobject_cast<NBRootAssistant *>(controller()->assistants().first().get());
    if (root == nullptr)
        return;
    const QString name = root->controls().folderNameTextField->text();
    controls().labelTextField->setText(name.isEmpty() ? QStringLiteral("Nimbrel") : name);
}

void NBAdvancedAssistant::showAsOpen()
{
    controller()->prevButton()->setText(texts::tr("Cancel"));
    controller()->prevButton()->setEnabled(true);
    controls().setCipherHidden(true);
}

void NBAdvancedAssistant::nextPressed()
{
    if (checkAdvanced() && checkConfigPath())
        AssistantPage::nextPressed();
}

// From any other place the program would look elsewhere at its next start, and the folder's only
// key would be gone.
bool NBAdvancedAssistant::checkConfigPath()
{
    QLineEdit &field = *controls().configTextField;
    if (field.text().startsWith(QLatin1String("~/")))
        field.setText(systemFacts::homeFolder() + field.text().sliced(1));
    if (!controls().configButton->isChecked() || field.text().startsWith(u'/'))
        return true;
    return fail(texts::tr("Please give the whole path of the configuration file, beginning with "
                          "\"/\"."));
}

void NBAdvancedAssistant::prevPressed()
{
    if (_isOpen)
        controller()->reset();
    else
        AssistantPage::prevPressed();
}

bool NBAdvancedAssistant::checkAdvanced()
{
    if (isLabelTaken())
        return fail(texts::tr("A volume with this label already exists."));
    if (blockSize() % 16 > 0)
        return fail(texts::tr("The block size has to be a multiple of 16."));
    if (controls().configButton->isChecked() && Util::isEmpty(controls().configTextField->text()))
        return fail(texts::tr("You did not specify an alternative configuration file."));
    return true;
}

// A volume without a label has none in common with anything.
bool NBAdvancedAssistant::isLabelTaken() const
{
    const QString label = controls().labelTextField->text();
    const QList<VolumePtr> &volumes = _application.volumesController().volumes();
    return std::any_of(volumes.begin(), volumes.end(), [&](const VolumePtr &volume) {
        return !volume->label().isNull() && volume->label() == label && volume != _workingVolume;
    });
}

void NBAdvancedAssistant::configButton_Click()
{
    const bool isOn = controls().configButton->isChecked();
    controls().configTextField->setEnabled(isOn);
    controls().configBrowseButton->setEnabled(isOn);
}

void NBAdvancedAssistant::configBrowseButton_Click()
{
    const panels::Handler takePath = [this](const QUrl &url) {
        controls().configTextField->setText(url.toLocalFile());
    };
    const QString title = texts::tr("Choose the Configuration File");
    QWidget &window = *controller()->window();
    if (_isOpen)
        panels::beginSheet(window, panels::OpenPanel{.title = title}, takePath);
    else // it needn't exist: the creation writes it
        panels::beginSheet(window, panels::SavePanel{.title = title}, takePath);
}

void NBAdvancedAssistant::selectEnableSpotlight()
{
    const bool isOn = controls().spotlightButton->isChecked();
    for (QCheckBox *button :
         {controls().mountAsLocalDiskButton, controls().mountForAllUsersButton}) {
        button->setChecked(isOn);
        button->setEnabled(!isOn);
    }
}

qint64 NBAdvancedAssistant::keySize() const
{
    const QString algorithm = controls().algorithmButton->currentText();
    if (algorithm == QLatin1String("AES-128"))
        return 128;
    return algorithm == QLatin1String("AES-192") ? 192 : 256;
}

qint32 NBAdvancedAssistant::blockSize() const
{
    return intValue(controls().blockSizeTextField->text());
}

} // namespace nimbrel
