#include "assistants/views/WelcomeMatrix.h"

#include "assistants/widgets/Form.h"

#include <QButtonGroup>
#include <QLabel>
#include <QRadioButton>
#include <QStyle>
#include <QVBoxLayout>

namespace nimbrel {

WelcomeMatrix::WelcomeMatrix(QWidget *parent)
    : QWidget(parent), _rows(new QButtonGroup(this)), _layout(new QVBoxLayout(this))
{
    _layout->setContentsMargins({});
    connect(_rows, &QButtonGroup::idToggled, this, [this](int, bool isChosen) {
        if (isChosen)
            Q_EMIT selectionChanged();
    });
}

void WelcomeMatrix::addRow(const QString &title, const QString &explanation)
{
    const auto row = static_cast<int>(_rows->buttons().size());
    auto *button = new QRadioButton(title, this);
    button->setAccessibleDescription(explanation);
    QLabel *text = form::makeHint(explanation, this);
    text->setContentsMargins(textIndent(), 0, 0, 0);
    if (row > 0)
        _layout->addSpacing(text->fontMetrics().lineSpacing() / 2);
    _layout->addWidget(button);
    _layout->addWidget(text);
    _rows->addButton(button, row);
    if (row > 0)
        return;
    button->setChecked(true);
    setFocusProxy(button);
}

int WelcomeMatrix::selectedRow() const
{
    return _rows->checkedId();
}

void WelcomeMatrix::selectRow(int row)
{
    if (QAbstractButton *button = _rows->button(row))
        button->setChecked(true);
}

int WelcomeMatrix::textIndent() const
{
    return style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth, nullptr, this) +
           style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing, nullptr, this);
}

} // namespace nimbrel
