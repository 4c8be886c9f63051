// The engine of the assistants: one window, its pages in their order, the way through them.
#pragma once

#include "assistant/TEBaseAssistant.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>

#include <memory>

class QEventLoop;
class QLabel;
class QPushButton;

namespace nimbrel {

class SetupAssistantWindow;
class TEInstallStepView;

using AssistantPtr = std::shared_ptr<TEBaseAssistant>;

// Knows nothing of what a page does. A flow adds pages, runs the engine and afterwards looks at
// `finished` and at its pages' controls. Main thread only.
class TESetupAssistant final : public QObject
{
    Q_OBJECT

public:
    // init  The window is made by run().
    TESetupAssistant();
    // initMini  With the small window, made at once.
    [[nodiscard]] static std::unique_ptr<TESetupAssistant> initMini();
    // assistant  The one shared engine.
    [[nodiscard]] static TESetupAssistant &assistant();
    ~TESetupAssistant() override;

    [[nodiscard]] QString nibName() const { return QStringLiteral("SetupAssistant"); }

    void addAssistant(const AssistantPtr &page);
    void insertNextAssistant(const AssistantPtr &page); // right behind the current one
    // insertAssistant:atIndex:
    // Prepares the page; one that can't be prepared is told to the user and left out. `atIndex`
    // is cut to the list.
    void insertAssistant(const AssistantPtr &page, qsizetype atIndex);

    // False without pages. Blocks until the window has closed when modal.
    bool run();
    // Closes the window, ends a modal run, and lets the pages go; `finished` and
    // `currentAssistant` stay.
    void reset();
    // dismissAssistant:  Abandons the run.
    void dismissAssistant();
    void runNextAssistant();
    void runPreviousAssistant();
    // runAssistant:lastStep:
    void runAssistant(const AssistantPtr &page, bool lastStep);
    // nextPressed:, prevPressed:  The buttons' actions, for the current page.
    void nextPressed() const;
    void prevPressed() const;
    // windowWillClose:
    void windowWillClose();
    // selectStep:  0, or -192 for a step that isn't in the list.
    std::int32_t selectStep(const QString &step) const;

    // getAssistantOfClass:, containsAssistantOfClass:  Of exactly that class; null when none is.
    template <class Page>
    [[nodiscard]] std::shared_ptr<Page> getAssistantOfClass() const
    {
        return std::static_pointer_cast<Page>(getAssistantOfClass(Page::staticMetaObject));
    }
    [[nodiscard]] AssistantPtr getAssistantOfClass(const QMetaObject &pageClass) const;
    template <class Page>
    [[nodiscard]] bool containsAssistantOfClass() const
    {
        return getAssistantOfClass(Page::staticMetaObject) != nullptr;
    }

    // Values that pages share during one run.
    void setObject(const QVariant &object, const QString &forKey);
    [[nodiscard]] QVariant objectForKey(const QString &key) const;

    // Null where there is none.
    [[nodiscard]] AssistantPtr prevAssistant() const;
    [[nodiscard]] AssistantPtr nextAssistant() const;
    [[nodiscard]] AssistantPtr currAssistant() const;
    [[nodiscard]] const QList<AssistantPtr> &assistants() const noexcept { return _assistants; }
    [[nodiscard]] std::int32_t currentAssistant() const noexcept { return _currentAssistant; }

    // Null before the window is made.
    [[nodiscard]] QWidget *window() const;
    [[nodiscard]] QPushButton *nextButton() const;
    [[nodiscard]] QPushButton *prevButton() const;
    [[nodiscard]] QWidget *assistantBox() const;
    // A spare place in the button row, at the box's left edge, with a layout. At each page change
    // the controls in it go back into their page's view.
    [[nodiscard]] QWidget *specialView() const;
    [[nodiscard]] TEInstallStepView *installStepView() const;
    [[nodiscard]] QLabel *stepTitle() const;

    [[nodiscard]] bool finished() const noexcept { return _finished; }
    void setFinished(bool finished) noexcept { _finished = finished; }
    [[nodiscard]] bool modal() const noexcept { return _modal; }
    void setModal(bool modal) noexcept { _modal = modal; }
    // Free for the flow's use.
    [[nodiscard]] const QVariant &userObject() const noexcept { return _userObject; }
    void setUserObject(const QVariant &object) { _userObject = object; }
    [[nodiscard]] const QByteArray &userSelector() const noexcept { return _userSelector; }
    void setUserSelector(const QByteArray &selector) { _userSelector = selector; }

Q_SIGNALS:
    void TEAssistantDidFinishNotification(nimbrel::TEBaseAssistant *page); // left forward
    void TESetupAssistantFinishedNotification();     // behind the last page; the pages have gone
    void TESetupAssistantWasDismissedNotification(); // before the pages go

private:
    void loadWindow(const QString &nib);
    [[nodiscard]] AssistantPtr assistantAt(std::int32_t index) const;
    [[nodiscard]] QStringList stepsOfAllPages() const;
    void fitWindow();
    void resetButtons() const;
    void showWindow();
    void stopModal();

    std::unique_ptr<SetupAssistantWindow> _window;
    QList<AssistantPtr> _assistants;
    QHash<QString, QVariant> _sessionDict;
    std::int32_t _currentAssistant = 0;
    bool _finished = false;
    bool _modal = false;
    QEventLoop *_modalSession = nullptr; // lives in run()
    QVariant _userObject;
    QByteArray _userSelector;
};

} // namespace nimbrel
