#include "assistants/views/ChangePassphraseAssistantView.h"

#include "app/Texts.h"
#include "assistants/widgets/CapsLockHint.h"
#include "assistants/widgets/Form.h"
#include "assistants/widgets/PasswordField.h"
#include "assistants/widgets/PathControl.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

namespace nimbrel {

ChangePassphraseAssistantView::ChangePassphraseAssistantView(QWidget *parent)
    : QWidget(parent), customPathControl(form::named("customPathControl", new PathControl(this))),
      oldPassphraseTextField(form::named("oldPassphraseTextField", new PasswordField(this))),
      passphraseTextField(form::named("passphraseTextField", new PasswordField(this))),
      confirmTextField(form::named("confirmTextField", new PasswordField(this))),
      rememberButton(form::named("rememberButton",
                                 new QCheckBox(texts::tr("&Remember the new password"), this))),
      busyIndicator(form::named("busyIndicator", new QProgressBar(this)))
{
    busyIndicator->setRange(0, 0); // nobody knows how long
    busyIndicator->setTextVisible(false);
    busyIndicator->setAccessibleName(texts::tr("The password is being changed"));
    form::keepRoomWhenHidden(*busyIndicator);
    busyIndicator->hide();
    QVBoxLayout *column = form::makeColumn(*this);
    column->addWidget(form::makeText(
        texts::tr("This changes the password of the folder. The files in it stay as they are."),
        this));
    column->addLayout(makeFields());
    column->addStretch(1);
    column->addWidget(busyIndicator);
    setFocusProxy(oldPassphraseTextField);
}

QFormLayout *ChangePassphraseAssistantView::makeFields()
{
    auto *capsLock = new CapsLockHint(this);
    for (PasswordField *field : {oldPassphraseTextField, passphraseTextField, confirmTextField})
        capsLock->watch(*field);

    QFormLayout *fields = form::makeForm();
    fields->addRow(form::makeLabel(texts::tr("Folder:"), customPathControl, this),
                   customPathControl);
    fields->addRow(form::makeLabel(texts::tr("&Current password:"), oldPassphraseTextField, this),
                   oldPassphraseTextField);
    fields->addRow(form::makeLabel(texts::tr("&New password:"), passphraseTextField, this),
                   passphraseTextField);
    fields->addRow(form::makeLabel(texts::tr("R&epeat new password:"), confirmTextField, this),
                   confirmTextField);
    auto *below = new QVBoxLayout; // keeps the hint's room, which a form gives away
    below->setSpacing(fields->verticalSpacing());
    below->addWidget(capsLock);
    below->addWidget(rememberButton);
    below->addWidget(form::makeHint(texts::tr("Keep the new password in a safe place. Without it, "
                                              "nobody can open the folder."),
                                    this));
    fields->addRow(QString(), below);
    return fields;
}

} // namespace nimbrel
