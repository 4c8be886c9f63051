#include "assistants/views/SuccessAssistantView.h"

#include "app/Texts.h"
#include "assistants/widgets/Form.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace nimbrel {

SuccessAssistantView::SuccessAssistantView(QWidget *parent)
    : QWidget(parent),
      backupButton(form::named("backupButton",
                               new QPushButton(texts::tr("&Back Up Configuration File…"), this))),
      openVolumeButton(form::named("openVolumeButton",
                                   new QCheckBox(texts::tr("&Show the disk when I am done"), this)))
{
    backupButton->setAutoDefault(false);
    openVolumeButton->setChecked(true);

    QVBoxLayout *column = form::makeColumn(*this);
    column->addWidget(form::makeText(
        texts::tr("Your Nimbrel Folder is ready. It shows itself as a disk: whatever you put on "
                  "that disk is encrypted before it is stored."),
        this));
    column->addWidget(form::makeText(
        texts::tr("The folder's configuration file holds its key, locked by your password. "
                  "Without this file not even the password opens the folder, so keep a copy of "
                  "it in another place, for example on a memory stick."),
        this));
    column->addWidget(backupButton, 0, Qt::AlignLeft);
    column->addStretch(1);
    column->addWidget(openVolumeButton);
}

} // namespace nimbrel
