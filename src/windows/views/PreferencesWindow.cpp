#include "windows/views/PreferencesWindow.h"

#include "app/Texts.h"
#include "assistants/widgets/Form.h"
#include "windows/views/WindowColumn.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <utility>

namespace nimbrel {

namespace {

QFrame *makeLine(QWidget *parent)
{
    auto *line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setForegroundRole(QPalette::Midlight);
    return line;
}

} // namespace

// Made in the order of the Tab key.
PreferencesWindow::PreferencesWindow(QWidget *parent)
    : QDialog(parent),
      autostartButton(form::named("autostartButton",
                                  new QCheckBox(texts::tr("&Start Nimbrel when I log in"), this))),
      createAliasesButton(
          form::named("createAliasesButton",
                      new QCheckBox(texts::tr("Show mounted disks on the &desktop"), this))),
      addVolumePrefixButton(form::named(
          "addVolumePrefixButton",
          new QCheckBox(texts::tr("Put my &user name before the names of disks"), this))),
      fileManagerActionsButton(form::named(
          "fileManagerActionsButton",
          new QCheckBox(texts::tr("Add “Show Encrypted File” to the &menus of file managers"),
                        this))),
      lastUpdateCheckTextField(
          form::named("lastUpdateCheckTextField", form::makeText(QString(), this))),
      checkNowButton(form::named("checkNowButton", new QPushButton(texts::tr("Check &Now"), this))),
      updateHintTextField(form::named("updateHintTextField", form::makeHint(QString(), this))),
      closeButton(form::named("closeButton", new QPushButton(texts::tr("&Close"), this)))
{
    setObjectName(QStringLiteral("NBPreferencesWindow"));
    setWindowTitle(texts::tr("Preferences"));
    setWindowModality(Qt::WindowModal);
    checkNowButton->setAutoDefault(false);
    closeButton->setDefault(true);
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(closeButton, QDialogButtonBox::RejectRole);

    QVBoxLayout *column = makeWindowColumn(*this);
    addSettings(*column);
    column->addWidget(makeLine(this));
    addUpdates(*column);
    column->addStretch(1);
    column->addWidget(buttons);
}

QVBoxLayout *PreferencesWindow::makeExplained(QCheckBox *button, const QString &explanation)
{
    const int indent = style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, button) +
                       style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, button);
    button->setAccessibleDescription(explanation);
    return form::makeExplained(button, form::makeHint(explanation, this), indent);
}

void PreferencesWindow::addSettings(QVBoxLayout &column)
{
    column.addWidget(autostartButton);
    column.addLayout(
        makeExplained(createAliasesButton, texts::tr("A link to each disk while it is mounted.")));
    column.addLayout(makeExplained(
        addVolumePrefixButton,
        texts::tr(
            "Tells the disks of several users of this computer apart. Mounted disks keep their "
            "names.")));
    column.addLayout(makeExplained(
        fileManagerActionsButton,
        texts::tr("For a file on one of your disks: shows what it is called in its encrypted "
                  "folder.")));
}

void PreferencesWindow::addUpdates(QVBoxLayout &column)
{
    constexpr int letters = 64;
    updateHintTextField->setMinimumWidth(fontMetrics().averageCharWidth() * letters);
    lastUpdateCheckTextField->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    QHBoxLayout *row = form::makeRow();
    row->addWidget(lastUpdateCheckTextField, 1);
    row->addWidget(checkNowButton);
    column.addLayout(form::makeExplained(row, updateHintTextField));
}

void PreferencesWindow::done(int result)
{
    if (std::exchange(_isClosing, true))
        return;
    Q_EMIT willClose();
    QDialog::done(result);
}

} // namespace nimbrel
