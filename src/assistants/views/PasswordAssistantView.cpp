#include "assistants/views/PasswordAssistantView.h"

#include "app/TextFormat.h"
#include "app/Texts.h"
#include "assistant/GuessTime.h"
#include "assistant/NBPassphraseStrengthIndicator.h"
#include "assistants/widgets/CapsLockHint.h"
#include "assistants/widgets/Form.h"
#include "assistants/widgets/PasswordField.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace nimbrel {

PasswordAssistantView::PasswordAssistantView(QWidget *parent)
    : QWidget(parent),
      passphraseTextField(form::named("passphraseTextField", new PasswordField(this))),
      confirmTextField(form::named("confirmTextField", new PasswordField(this))),
      rememberButton(
          form::named("rememberButton", new QCheckBox(texts::tr("&Remember this password"), this))),
      strengthIndicator(form::named("strengthIndicator", new NBPassphraseStrengthIndicator(this))),
      strengthLabel(form::named("strengthLabel", form::makeLabel(QString(), nullptr, this))),
      guessTimeLabel(form::named("guessTimeLabel", form::makeHint(QString(), this)))
{
    rememberButton->setChecked(true);
    rememberButton->setToolTip(texts::tr("It is kept in the keyring of your desktop."));
    strengthIndicator->setAccessibleName(texts::tr("Strength of the password"));
    strengthIndicator->setStrengthLabel(strengthLabel);
    connect(passphraseTextField, &QLineEdit::textChanged, strengthIndicator,
            &NBPassphraseStrengthIndicator::controlTextDidChange);
    connect(passphraseTextField, &QLineEdit::textChanged, this,
            &PasswordAssistantView::showGuessTime);

    QVBoxLayout *column = form::makeColumn(*this);
    column->addWidget(form::makeText(
        texts::tr("The folder opens with this password alone. Nobody can recover it, not even "
                  "you: without it your files are lost. Keep it in a safe place."),
        this));
    column->addLayout(makeFields());
    column->addStretch(1);
    setFocusProxy(passphraseTextField);
}

QFormLayout *PasswordAssistantView::makeFields()
{
    auto *capsLock = new CapsLockHint(this);
    capsLock->watch(*passphraseTextField);
    capsLock->watch(*confirmTextField);

    QFormLayout *fields = form::makeForm();
    fields->addRow(form::makeLabel(texts::tr("&Password:"), passphraseTextField, this),
                   passphraseTextField);
    fields->addRow(static_cast<QWidget *>(nullptr), makeStrength());
    fields->addRow(form::makeLabel(texts::tr("R&epeat it:"), confirmTextField, this),
                   confirmTextField);
    fields->addRow(static_cast<QWidget *>(nullptr), rememberButton);
    auto *hint = new QVBoxLayout; // a form's row would give away the room of what is hidden
    hint->addWidget(capsLock);
    fields->addRow(static_cast<QWidget *>(nullptr), hint);
    return fields;
}

QVBoxLayout *PasswordAssistantView::makeStrength() const
{
    guessTimeLabel->setMinimumHeight(guessTimeLabel->fontMetrics().lineSpacing());
    QHBoxLayout *level = form::makeRow();
    level->addWidget(strengthIndicator, 1);
    level->addWidget(strengthLabel);
    return form::makeExplained(level, guessTimeLabel);
}

void PasswordAssistantView::showGuessTime(const QString &passphrase) const
{
    const QString time = guessTime(passphrase);
    guessTimeLabel->setText(time.isEmpty() ? QString()
                                           : formatted(texts::tr("Time to guess it: %@"), {time}));
}

} // namespace nimbrel
