// The engine's window.
#include "assistant/TESetupAssistant.h"

#include "app/Texts.h"
#include "assistant/BundleAdditions.h"
#include "assistant/SetupAssistantWindow.h"

#include <QEventLoop>
#include <QPushButton>
#include <QScreen>

namespace nimbrel {

namespace {

void centre(QWidget &window)
{
    if (const QScreen *screen = window.screen()) {
        const QSize space = screen->availableSize() - window.frameSize();
        window.move(screen->availableGeometry().topLeft() +
                    QPoint(space.width() / 2, space.height() / 2));
    }
}

} // namespace

void TESetupAssistant::loadWindow(const QString &nib)
{
    _window.reset(static_cast<SetupAssistantWindow *>(bundle::loadNibNamedOrQuit(nib).release()));
    connect(_window.get(), &SetupAssistantWindow::willClose, this,
            &TESetupAssistant::windowWillClose);
}

// As the last step of a run: blocks when modal.
void TESetupAssistant::showWindow()
{
    _window->setWindowModality(_modal ? Qt::ApplicationModal : Qt::NonModal);
    centre(*_window);
    _window->show();
    _window->raise();
    _window->activateWindow();
    if (!_modal)
        return;
    QEventLoop session;
    _modalSession = &session;
    session.exec();
    _modalSession = nullptr;
}

void TESetupAssistant::fitWindow()
{
    QList<QWidget *> views;
    for (const AssistantPtr &page : _assistants)
        views += page->view();
    _window->fitPages(views);
}

// What a page changed on the buttons is undone.
void TESetupAssistant::resetButtons() const
{
    prevButton()->setText(texts::tr("Go Back"));
    nextButton()->setText(texts::tr("Next"));
    for (QPushButton *button : {prevButton(), nextButton()})
        disconnect(button, &QPushButton::clicked, nullptr, nullptr);
    connect(prevButton(), &QPushButton::clicked, this, &TESetupAssistant::prevPressed);
    connect(nextButton(), &QPushButton::clicked, this, &TESetupAssistant::nextPressed);
    prevButton()->setEnabled(_currentAssistant != 0);
    nextButton()->setEnabled(true);
}

void TESetupAssistant::stopModal()
{
    if (_modal && _modalSession != nullptr)
        _modalSession->quit();
}

QWidget *TESetupAssistant::window() const
{
    return _window.get();
}

QPushButton *TESetupAssistant::nextButton() const
{
    return _window ? _window->nextButton : nullptr;
}

QPushButton *TESetupAssistant::prevButton() const
{
    return _window ? _window->prevButton : nullptr;
}

QWidget *TESetupAssistant::assistantBox() const
{
    return _window ? _window->assistantBox : nullptr;
}

QWidget *TESetupAssistant::specialView() const
{
    return _window ? _window->specialView : nullptr;
}

TEInstallStepView *TESetupAssistant::installStepView() const
{
    return _window ? _window->installStepView : nullptr;
}

QLabel *TESetupAssistant::stepTitle() const
{
    return _window ? _window->stepTitle : nullptr;
}

} // namespace nimbrel
