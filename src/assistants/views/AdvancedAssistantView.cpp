#include "assistants/views/AdvancedAssistantView.h"

#include "app/Texts.h"
#include "assistants/widgets/Form.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace nimbrel {

namespace {

// Where the text of a check box begins.
int textIndent(const QCheckBox &button)
{
    const QStyle &style = *button.style();
    return style.pixelMetric(QStyle::PM_IndicatorWidth, nullptr, &button) +
           style.pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, &button);
}

} // namespace

// Made in the order of the Tab key.
AdvancedAssistantView::AdvancedAssistantView(QWidget *parent)
    : QWidget(parent), labelTextField(form::named("labelTextField", new QLineEdit(this))),
      algorithmButton(form::named("algorithmButton", new QComboBox(this))),
      blockSizeTextField(form::named("blockSizeTextField", new QLineEdit(this)))
{
    algorithmLabelTextField =
        form::named("algorithmLabelTextField",
                    form::makeLabel(texts::tr("&Encryption:"), algorithmButton, this));
    blockSizeLabelTextField =
        form::named("blockSizeLabelTextField",
                    form::makeLabel(texts::tr("Block &size:"), blockSizeTextField, this));
    blockSizeBytesLabelTextField = form::named("blockSizeBytesLabelTextField",
                                               form::makeLabel(texts::tr("bytes"), nullptr, this));
    filenameEncryptionButton =
        makeButton("filenameEncryptionButton", texts::tr("Encrypt &file names"), QString());
    containerView = form::named("containerView", new QWidget(this));
    fillContainer();
    setInitialValues();

    _fields = form::makeForm();
    _fields->addRow(form::makeLabel(texts::tr("&Label:"), labelTextField, this), labelTextField);
    addCipherRows();
    _fields->addRow(form::makeLabel(texts::tr("Options:"), nullptr, this), containerView);
    QVBoxLayout *column = form::makeColumn(*this);
    column->addLayout(_fields);
    column->addStretch(1);
    setFocusProxy(labelTextField);
}

QCheckBox *AdvancedAssistantView::makeButton(const char *name, const QString &title,
                                             const QString &toolTip)
{
    auto *button =
        form::named(name, new QCheckBox(title, containerView != nullptr ? containerView : this));
    button->setToolTip(toolTip);
    button->setAccessibleDescription(toolTip);
    return button;
}

void AdvancedAssistantView::setInitialValues()
{
    algorithmButton->addItems(
        {QStringLiteral("AES-256"), QStringLiteral("AES-192"), QStringLiteral("AES-128")});
    blockSizeTextField->setText(QStringLiteral("4096"));
    for (QCheckBox *button : {filenameEncryptionButton, automountButton, checkKeyButton})
        button->setChecked(true);
    configTextField->setEnabled(false);
    configBrowseButton->setEnabled(false);
}

void AdvancedAssistantView::addCipherRows()
{
    const auto hint = [this](const QString &text) { return form::makeHint(text, this); };
    QHBoxLayout *blockSize = form::makeRow();
    blockSize->addWidget(blockSizeTextField);
    blockSize->addWidget(blockSizeBytesLabelTextField);
    blockSize->addStretch(1);

    _firstCipherRow = _fields->rowCount();
    _fields->addRow(
        algorithmLabelTextField,
        form::makeExplained(algorithmButton,
                            hint(texts::tr("AES-256 is the strongest, AES-128 the fastest."))));
    _fields->addRow(
        blockSizeLabelTextField,
        form::makeExplained(blockSize, hint(texts::tr("A multiple of 16, at least 16. Leave it "
                                                      "unless you know what suits you better."))));
    _fields->addRow(
        static_cast<QWidget *>(nullptr),
        form::makeExplained(filenameEncryptionButton,
                            hint(texts::tr("Otherwise whoever sees the folder can read the names "
                                           "of your files.")),
                            textIndent(*filenameEncryptionButton)));
    _lastCipherRow = _fields->rowCount() - 1;
}

void AdvancedAssistantView::fillContainer()
{
    automountButton = makeButton("automountButton", texts::tr("Open when Nimbrel s&tarts"),
                                 texts::tr("The disk is there as soon as Nimbrel runs."));
    checkKeyButton =
        makeButton("checkKeyButton", texts::tr("&Check the key"),
                   texts::tr("Kept for other systems: it changes nothing on this one."));
    spotlightButton =
        makeButton("spotlightButton", texts::tr("Let the desktop &index its content"), QString());
    mountAsLocalDiskButton =
        makeButton("mountAsLocalDiskButton", texts::tr("Show as a local &disk"),
                   texts::tr("Kept for other systems: it changes nothing on this one."));
    mountForAllUsersButton =
        makeButton("mountForAllUsersButton", texts::tr("&All users of this computer may use it"),
                   texts::tr("As far as the files' permissions allow."));
    QLabel *indexHint = form::makeHint(
        texts::tr("For the search of your desktop. The index itself is not encrypted."),
        containerView);
    auto *options = new QVBoxLayout(containerView);
    options->setContentsMargins({});
    options->addWidget(automountButton);
    options->addWidget(checkKeyButton);
    options->addLayout(
        form::makeExplained(spotlightButton, indexHint, textIndent(*spotlightButton)));
    options->addWidget(mountAsLocalDiskButton);
    options->addWidget(mountForAllUsersButton);
    addConfigRow(*options);
}

void AdvancedAssistantView::addConfigRow(QVBoxLayout &options)
{
    configButton =
        makeButton("configButton", texts::tr("Keep the configuration file in an&other place:"),
                   texts::tr("It is needed together with the password to open the folder."));
    configTextField = form::named("configTextField", new QLineEdit(containerView));
    configTextField->setAccessibleName(texts::tr("Configuration file"));
    configBrowseButton =
        form::named("configBrowseButton", new QPushButton(texts::tr("&Browse…"), containerView));
    configBrowseButton->setAutoDefault(false);
    QHBoxLayout *file = form::makeRow();
    file->setContentsMargins(textIndent(*configButton), 0, 0, 0);
    file->addWidget(configTextField, 1);
    file->addWidget(configBrowseButton);
    options.addWidget(configButton);
    options.addLayout(file);
}

void AdvancedAssistantView::setCipherHidden(bool hidden)
{
    for (int row = _firstCipherRow; row <= _lastCipherRow; ++row)
        _fields->setRowVisible(row, !hidden);
}

} // namespace nimbrel
