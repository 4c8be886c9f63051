#include "assistants/widgets/Form.h"

#include <QApplication>
#include <QFontMetrics>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace nimbrel::form {

namespace {

// Device-independent pixels; grow with the user's font.
int lineHeight()
{
    return QFontMetrics(QApplication::font()).height();
}

void addHint(QVBoxLayout &column, QLabel *hint, int indent)
{
    auto *row = new QHBoxLayout;
    row->setContentsMargins(indent, 0, 0, 0);
    row->addWidget(hint);
    column.setSpacing(lineHeight() / 5);
    column.addLayout(row);
}

} // namespace

QVBoxLayout *makeColumn(QWidget &view)
{
    auto *column = new QVBoxLayout(&view);
    column->setContentsMargins({});
    column->setSpacing(lineHeight());
    return column;
}

QFormLayout *makeForm()
{
    auto *rows = new QFormLayout;
    rows->setContentsMargins({});
    rows->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    rows->setFormAlignment(Qt::AlignLeft | Qt::AlignTop);
    rows->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    rows->setRowWrapPolicy(QFormLayout::DontWrapRows);
    rows->setVerticalSpacing(lineHeight() / 2);
    rows->setHorizontalSpacing(lineHeight() * 3 / 4);
    return rows;
}

QHBoxLayout *makeRow()
{
    auto *row = new QHBoxLayout;
    row->setContentsMargins({});
    row->setSpacing(lineHeight() / 2);
    return row;
}

QVBoxLayout *makeExplained(QWidget *control, QLabel *hint, int indent)
{
    auto *column = new QVBoxLayout;
    column->addWidget(control);
    addHint(*column, hint, indent);
    return column;
}

QVBoxLayout *makeExplained(QHBoxLayout *row, QLabel *hint)
{
    auto *column = new QVBoxLayout;
    column->addLayout(row);
    addHint(*column, hint, 0);
    return column;
}

QLabel *makeText(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

QLabel *makeHint(const QString &text, QWidget *parent)
{
    constexpr double smaller = 0.9;
    QLabel *label = makeText(text, parent);
    QFont font = label->font();
    if (font.pointSizeF() > 0) // a size in pixels is somebody's own wish
        font.setPointSizeF(font.pointSizeF() * smaller);
    label->setFont(font);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

void keepRoomWhenHidden(QWidget &control)
{
    QSizePolicy policy = control.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    control.setSizePolicy(policy);
}

QLabel *makeLabel(const QString &text, QWidget *buddy, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setBuddy(buddy);
    return label;
}

} // namespace nimbrel::form
