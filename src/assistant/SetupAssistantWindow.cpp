#include "assistant/SetupAssistantWindow.h"

#include "assistant/Icons.h"
#include "assistant/NibLoading.h"
#include "assistant/TEInstallStepView.h"
#include "assistant/TESetupAssistantBGView.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace nimbrel {

namespace {

// In letters' widths and heights, so that all grows with the user's font.
constexpr int miniBoxLetters = 58;
constexpr int fullBoxLetters = 72;
constexpr int miniBoxLines = 12;
constexpr int fullBoxLines = 18;
constexpr int margin = 24; // device-independent pixels

int lettersOf(SetupAssistantWindow::Size size)
{
    return size == SetupAssistantWindow::Size::Mini ? miniBoxLetters : fullBoxLetters;
}

int linesOf(SetupAssistantWindow::Size size)
{
    return size == SetupAssistantWindow::Size::Mini ? miniBoxLines : fullBoxLines;
}

QFont headingFont(QFont font)
{
    constexpr double larger = 1.5;
    font.setPointSizeF(font.pointSizeF() * larger);
    font.setBold(true);
    return font;
}

QFrame *makeLine(QFrame::Shape shape, QWidget *parent)
{
    auto *line = new QFrame(parent);
    line->setFrameShape(shape);
    line->setFrameShadow(QFrame::Plain);
    line->setForegroundRole(QPalette::Midlight);
    return line;
}

QPushButton *makeButton(const char *name, QWidget *parent)
{
    auto *button = new QPushButton(parent);
    button->setObjectName(QLatin1String(name));
    constexpr int letters = 14;
    button->setMinimumWidth(button->fontMetrics().averageCharWidth() * letters);
    return button;
}

int heightOf(const QWidget &view, int width)
{
    return view.hasHeightForWidth()
               ? std::max(view.heightForWidth(width), view.minimumSizeHint().height())
               : view.sizeHint().height();
}

// A page's own controls return to it.
void giveBack(QWidget &place, QWidget &page)
{
    for (QWidget *control : place.findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        place.layout()->removeWidget(control);
        control->setParent(&page);
    }
}

} // namespace

SetupAssistantWindow::SetupAssistantWindow(Size size)
{
    setWindowTitle(QStringLiteral("Nimbrel"));
    setWindowIcon(icons::named(QStringLiteral("NSApplicationIcon")));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto *columns = new QHBoxLayout(this);
    columns->setContentsMargins({});
    columns->setSpacing(0);
    addSide(*columns);
    columns->addWidget(makeLine(QFrame::VLine, this));
    addPageColumn(*columns, size);
}

void SetupAssistantWindow::addSide(QHBoxLayout &columns)
{
    auto *side = new TESetupAssistantBGView(this);
    side->setBackgroundRole(QPalette::AlternateBase);
    side->setAutoFillBackground(true);
    auto *column = new QVBoxLayout(side);
    column->setContentsMargins(margin, 0, margin, margin);
    installStepView = new TEInstallStepView(side);
    installStepView->setObjectName(QStringLiteral("installStepView"));
    column->addWidget(installStepView);
    columns.addWidget(side);
}

void SetupAssistantWindow::addPageColumn(QHBoxLayout &columns, Size size)
{
    auto *column = new QVBoxLayout;
    column->setContentsMargins(margin, margin, margin, margin * 2 / 3);
    column->setSpacing(margin * 2 / 3);
    stepTitle = new QLabel(this);
    stepTitle->setObjectName(QStringLiteral("stepTitle"));
    stepTitle->setFont(headingFont(font()));
    stepTitle->setTextFormat(Qt::PlainText);
    column->addWidget(stepTitle);
    assistantBox = new QWidget(this);
    assistantBox->setObjectName(QStringLiteral("assistantBox"));
    assistantBox->setMinimumSize(fontMetrics().averageCharWidth() * lettersOf(size),
                                 fontMetrics().lineSpacing() * linesOf(size));
    _boxLayout = new QVBoxLayout(assistantBox);
    _boxLayout->setContentsMargins({});
    column->addWidget(assistantBox, 1);
    column->addWidget(makeLine(QFrame::HLine, this));
    addButtons(*column);
    columns.addLayout(column, 1);
}

void SetupAssistantWindow::addButtons(QVBoxLayout &column)
{
    auto *row = new QHBoxLayout;
    specialView = new QWidget(this);
    specialView->setObjectName(QStringLiteral("specialView"));
    auto *special = new QHBoxLayout(specialView);
    special->setContentsMargins({});
    row->addWidget(specialView);
    row->addStretch(1);
    prevButton = makeButton("prevButton", this);
    prevButton->setAutoDefault(false);
    nextButton = makeButton("nextButton", this);
    nextButton->setDefault(true);
    row->addWidget(prevButton);
    row->addWidget(nextButton);
    column.addLayout(row);
}

void SetupAssistantWindow::setPage(QWidget *view)
{
    if (_page != nullptr) {
        giveBack(*specialView, *_page);
        _boxLayout->removeWidget(_page);
        _page->setParent(nullptr);
    }
    _page = view;
    if (view == nullptr)
        return;
    _boxLayout->addWidget(view);
    view->show();
    view->setFocus();
}

void SetupAssistantWindow::fitPages(const QList<QWidget *> &views)
{
    QSize largest = assistantBox->minimumSize();
    for (const QWidget *view : views)
        largest.rwidth() = std::max(largest.width(), view->sizeHint().width());
    for (const QWidget *view : views)
        largest.rheight() = std::max(largest.height(), heightOf(*view, largest.width()));
    assistantBox->setMinimumSize(largest);
    layout()->activate();
    resize(layout()->totalMinimumSize());
}

void SetupAssistantWindow::done(int result)
{
    Q_EMIT willClose();
    QDialog::done(result);
}

void addSetupAssistantWindows()
{
    using Size = SetupAssistantWindow::Size;
    nibs::add(QStringLiteral("SetupAssistant"),
              [] { return std::make_unique<SetupAssistantWindow>(Size::Full); });
    nibs::add(QStringLiteral("SetupAssistantMini"),
              [] { return std::make_unique<SetupAssistantWindow>(Size::Mini); });
}

} // namespace nimbrel
