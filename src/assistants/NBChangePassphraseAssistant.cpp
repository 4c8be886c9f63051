#include "assistants/NBChangePassphraseAssistant.h"

#include "app/Texts.h"
#include "app/Util.h"
#include "assistant/TESetupAssistant.h"
#include "assistants/widgets/PasswordField.h"
#include "assistants/widgets/PathControl.h"
#include "volume/NBNimbrelVolume.h"

#include <QCheckBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>

namespace nimbrel {

namespace {

// A window that answers to nobody while it lives, and says so: keys are derived.
class BusyWindow final
{
public:
    BusyWindow(QWidget &window, QWidget &indicator)
        : _window(&window), _indicator(&indicator), _focus(window.focusWidget())
    {
        window.setCursor(Qt::BusyCursor);
        window.setEnabled(false);
        indicator.show();
    }
    ~BusyWindow()
    {
        if (!_window)
            return;
        _indicator->hide();
        _window->setEnabled(true);
        _window->unsetCursor();
        if (_focus)
            _focus->setFocus();
    }
    BusyWindow(const BusyWindow &) = delete;
    BusyWindow &operator=(const BusyWindow &) = delete;

private:
    QPointer<QWidget> _window;
    QWidget *_indicator;
    QPointer<QWidget> _focus;
};

} // namespace

void NBChangePassphraseAssistant::setVolume(std::shared_ptr<NBNimbrelVolume> volume)
{
    _volume = std::move(volume);
}

QStringList NBChangePassphraseAssistant::orderedSteps() const
{
    return {texts::tr("Change password")};
}

void NBChangePassphraseAssistant::start()
{
    controls().customPathControl->setURL(QUrl::fromLocalFile(_volume->path()));
    controls().oldPassphraseTextField->setFocus();
    controls().rememberButton->setChecked(_volume->storePassphrase());
    controller()->prevButton()->setEnabled(true);
    controller()->prevButton()->setText(texts::tr("Cancel"));
    controller()->nextButton()->setText(texts::tr("Change"));
}

// What is to be remembered is told to the volume after the change: the change itself goes by what
// the volume had before.
void NBChangePassphraseAssistant::nextPressed()
{
    if (!checkPassphrases() || !changePassphrase())
        return;
    _volume->setStorePassphrase(controls().rememberButton->isChecked());
    Util::showAlert(texts::tr("You have successfully changed the password!"));
    AssistantPage::nextPressed();
}

void NBChangePassphraseAssistant::prevPressed()
{
    controller()->reset();
}

bool NBChangePassphraseAssistant::checkPassphrases()
{
    const ChangePassphraseAssistantView &page = controls();
    if (page.oldPassphraseTextField->text().isEmpty())
        complain(texts::tr("You did not enter the current password."),
                 *page.oldPassphraseTextField);
    else if (page.passphraseTextField->text().isEmpty())
        complain(texts::tr("Please enter a password."), *page.passphraseTextField);
    else if (page.passphraseTextField->text() != page.confirmTextField->text())
        complain(texts::tr("The passwords do not match."), *page.confirmTextField);
    else
        return true;
    return false;
}

// The volume tells the user of a failure itself.
bool NBChangePassphraseAssistant::changePassphrase()
{
    const SecureBuffer old = controls().oldPassphraseTextField->passphrase();
    const SecureBuffer wanted = controls().passphraseTextField->passphrase();
    const BusyWindow busy(*controller()->window(), *controls().busyIndicator);
    return _volume->changePassphrase(old.text(), wanted.text());
}

void NBChangePassphraseAssistant::complain(const QString &text, PasswordField &about)
{
    Util::showAlert(text);
    about.setFocus();
    about.selectAll();
}

} // namespace nimbrel
