// The engine's window: steps at the side, the page in its box, the buttons below.
#pragma once

#include <QDialog>

class QHBoxLayout;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace nimbrel {

class TEInstallStepView;

class SetupAssistantWindow final : public QDialog
{
    Q_OBJECT

public:
    enum class Size
    {
        Mini,
        Full
    };

    explicit SetupAssistantWindow(Size size);

    // Shows a view in the box; null empties it. The view is never owned: the one before is taken
    // out, without a parent, and gets back what it had put into the special view.
    void setPage(QWidget *view);
    // The box becomes large enough for every one of the views, in the text that they have now.
    void fitPages(const QList<QWidget *> &views);

    QWidget *assistantBox = nullptr;
    TEInstallStepView *installStepView = nullptr;
    QLabel *stepTitle = nullptr;
    QWidget *specialView = nullptr;
    QPushButton *prevButton = nullptr;
    QPushButton *nextButton = nullptr;

    void done(int result) override;

Q_SIGNALS:
    void willClose(); // by the user or by the engine

private:
    void addSide(QHBoxLayout &columns);
    void addPageColumn(QHBoxLayout &columns, Size size);
    void addButtons(QVBoxLayout &column);

    QVBoxLayout *_boxLayout = nullptr;
    QWidget *_page = nullptr;
};

// Makes "SetupAssistant" and "SetupAssistantMini" known to the window resources.
void addSetupAssistantWindows();

} // namespace nimbrel
