#include "assistant/TESetupAssistant.h"

#include "assistant/SetupAssistantWindow.h"
#include "assistant/TEInstallStepView.h"

#include <QCoreApplication>
#include <QLabel>

#include <utility>

namespace nimbrel {

namespace {

// No repainting while it lives.
class HeldUpdates final
{
public:
    explicit HeldUpdates(QWidget &window) : _window(window) { _window.setUpdatesEnabled(false); }
    ~HeldUpdates() { _window.setUpdatesEnabled(true); }
    HeldUpdates(const HeldUpdates &) = delete;
    HeldUpdates &operator=(const HeldUpdates &) = delete;

private:
    QWidget &_window;
};

} // namespace

TESetupAssistant::TESetupAssistant()
{
    addSetupAssistantWindows();
}

std::unique_ptr<TESetupAssistant> TESetupAssistant::initMini()
{
    auto engine = std::make_unique<TESetupAssistant>();
    engine->loadWindow(QStringLiteral("SetupAssistantMini"));
    return engine;
}

TESetupAssistant &TESetupAssistant::assistant()
{
    static std::unique_ptr<TESetupAssistant> shared;
    if (!shared) {
        shared = std::make_unique<TESetupAssistant>();
        qAddPostRoutine([] { shared.reset(); }); // no window outlives the application object
    }
    return *shared;
}

TESetupAssistant::~TESetupAssistant()
{
    if (_window) {
        _window->disconnect(this);
        _window->setPage(nullptr);
    }
}

bool TESetupAssistant::run()
{
    if (!_window)
        loadWindow(nibName());
    if (_assistants.isEmpty())
        return false;
    installStepView()->setSteps(stepsOfAllPages());
    fitWindow();
    _currentAssistant = 0;
    runAssistant(_assistants.first(), false);
    showWindow();
    return true;
}

void TESetupAssistant::runAssistant(const AssistantPtr &page, bool lastStep)
{
    const HeldUpdates held(*_window);
    resetButtons();
    _window->setPage(page->view());
    if (const QStringList steps = page->orderedSteps(); !steps.isEmpty())
        selectStep(steps.first());
    if (lastStep)
        page->restart();
    else
        page->start();
}

void TESetupAssistant::runNextAssistant()
{
    const AssistantPtr page = currAssistant();
    if (!page)
        return; // a click that came after the end
    Q_EMIT TEAssistantDidFinishNotification(page.get());
    ++_currentAssistant;
    if (const AssistantPtr next = currAssistant()) {
        runAssistant(next, false);
        return;
    }
    reset();
    _finished = true;
    Q_EMIT TESetupAssistantFinishedNotification();
}

void TESetupAssistant::runPreviousAssistant()
{
    const bool isBack = _currentAssistant >= 1;
    if (isBack)
        --_currentAssistant;
    if (const AssistantPtr page = currAssistant())
        runAssistant(page, isBack);
}

void TESetupAssistant::nextPressed() const
{
    if (const AssistantPtr page = currAssistant()) // held: the page may end the run
        page->nextPressed();
}

void TESetupAssistant::prevPressed() const
{
    if (const AssistantPtr page = currAssistant())
        page->prevPressed();
}

void TESetupAssistant::reset()
{
    if (_window)
        _window->close();
    stopModal();
    // The last holder of a page lets go of it, and of its view, when that has left the box.
    const QList<AssistantPtr> leaving = std::exchange(_assistants, {});
    _sessionDict.clear();
    if (!_window)
        return;
    installStepView()->clearSteps();
    _window->setPage(nullptr);
}

void TESetupAssistant::dismissAssistant()
{
    if (_assistants.isEmpty() && !(_window && _window->isVisible()))
        return;
    Q_EMIT TESetupAssistantWasDismissedNotification();
    reset();
}

void TESetupAssistant::windowWillClose()
{
    stopModal();
}

std::int32_t TESetupAssistant::selectStep(const QString &step) const
{
    const std::int32_t result = installStepView()->selectStep(step);
    stepTitle()->setText(step);
    return result;
}

} // namespace nimbrel
