#include "assistants/views/WelcomeAssistantView.h"

#include "app/Texts.h"
#include "assistants/views/WelcomeMatrix.h"
#include "assistants/widgets/Form.h"
#include "assistants/widgets/PathControl.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace nimbrel {

WelcomeAssistantView::WelcomeAssistantView(QWidget *parent)
    : QWidget(parent), welcomeMatrix(form::named("welcomeMatrix", new WelcomeMatrix(this))),
      pathControl(form::named("pathControl", new PathControl(this))),
      chooseButton(form::named("chooseButton", new QPushButton(texts::tr("&Choose…"), this))),
      openVolumeButton(form::named(
          "openVolumeButton", new QCheckBox(texts::tr("&Show the disk when it is ready"), this))),
      warning(Warning::make(this))
{
    welcomeMatrix->setAccessibleName(texts::tr("What would you like to do?"));
    welcomeMatrix->addRow(
        texts::tr("Create a &new Nimbrel Folder"),
        texts::tr("Choose this if you are new to Nimbrel. The folder lies in your cloud storage, "
                  "or anywhere else, and holds your files encrypted."));
    welcomeMatrix->addRow(
        texts::tr("&Open an existing Nimbrel Folder"),
        texts::tr("Choose this if you made one before, for example on another computer."));
    chooseButton->setAutoDefault(false);
    chooseButton->setAccessibleDescription(texts::tr("Choose the Nimbrel Folder to open."));
    openVolumeButton->setChecked(true);

    QVBoxLayout *column = form::makeColumn(*this);
    column->addWidget(form::makeText(
        texts::tr("Nimbrel encrypts your files before they are stored in the cloud, and shows "
                  "them to you as an ordinary disk."),
        this));
    column->addWidget(welcomeMatrix);
    column->addLayout(makeFolderControls());
    column->addStretch(1);
    keepRoomWhenHidden();
    setFocusProxy(welcomeMatrix);
}

QVBoxLayout *WelcomeAssistantView::makeFolderControls() const
{
    auto *folder = new QHBoxLayout;
    folder->addWidget(pathControl, 1);
    folder->addWidget(chooseButton);

    auto *controls = new QVBoxLayout;
    controls->setContentsMargins(welcomeMatrix->textIndent(), 0, 0, 0);
    controls->addLayout(folder);
    controls->addWidget(openVolumeButton);
    controls->addLayout(warning.row);
    return controls;
}

void WelcomeAssistantView::keepRoomWhenHidden() const
{
    form::keepRoomWhenHidden(*pathControl);
    form::keepRoomWhenHidden(*chooseButton);
    form::keepRoomWhenHidden(*openVolumeButton);
    setFolderControlsHidden(true);
    warning.setHidden(true);
}

void WelcomeAssistantView::setFolderControlsHidden(bool hidden) const
{
    pathControl->setHidden(hidden);
    chooseButton->setHidden(hidden);
    openVolumeButton->setHidden(hidden);
}

} // namespace nimbrel
