#include "assistants/views/EnterPassphraseAssistantView.h"

#include "app/Texts.h"
#include "assistants/widgets/CapsLockHint.h"
#include "assistants/widgets/Form.h"
#include "assistants/widgets/PasswordField.h"
#include "assistants/widgets/PathControl.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace nimbrel {

EnterPassphraseAssistantView::EnterPassphraseAssistantView(QWidget *parent)
    : QWidget(parent), customPathControl(form::named("customPathControl", new PathControl(this))),
      passphraseTextField(form::named("passphraseTextField", new PasswordField(this))),
      rememberButton(
          form::named("rememberButton", new QCheckBox(texts::tr("&Remember this password"), this)))
{
    auto *capsLock = new CapsLockHint(this);
    capsLock->watch(*passphraseTextField);

    QFormLayout *fields = form::makeForm();
    fields->addRow(form::makeLabel(texts::tr("Folder:"), customPathControl, this),
                   customPathControl);
    fields->addRow(form::makeLabel(texts::tr("&Password:"), passphraseTextField, this),
                   passphraseTextField);
    auto *below = new QVBoxLayout; // keeps the hint's room, which a form gives away
    below->setSpacing(fields->verticalSpacing());
    below->addWidget(
        form::makeHint(texts::tr("If the password is wrong, you are asked again."), this));
    below->addWidget(capsLock);
    fields->addRow(QString(), below);

    QVBoxLayout *column = form::makeColumn(*this);
    column->addWidget(form::makeText(
        texts::tr("This folder is encrypted. Enter its password to open it."), this));
    column->addLayout(fields);
    column->addStretch(1);
    column->addWidget(rememberButton);
    setFocusProxy(passphraseTextField);
}

} // namespace nimbrel
