// Pieces from which the pages' views are made, so that all look alike.
#pragma once

#include <QString>

class QFormLayout;
class QHBoxLayout;
class QLabel;
class QVBoxLayout;
class QWidget;

namespace nimbrel::form {

// The view's own layout: from the top, no margins (the window has them), generous spacing.
[[nodiscard]] QVBoxLayout *makeColumn(QWidget &view);
// Labels at the left, fields that grow.
[[nodiscard]] QFormLayout *makeForm();
// Controls beside each other.
[[nodiscard]] QHBoxLayout *makeRow();
// A control, or a row of them, with its hint below; the hint begins `indent` pixels to the right.
[[nodiscard]] QVBoxLayout *makeExplained(QWidget *control, QLabel *hint, int indent = 0);
[[nodiscard]] QVBoxLayout *makeExplained(QHBoxLayout *row, QLabel *hint);
// Several lines of plain text, which wraps.
[[nodiscard]] QLabel *makeText(const QString &text, QWidget *parent);
// The same, smaller and paler: explains a control. The palette's own placeholder colour.
[[nodiscard]] QLabel *makeHint(const QString &text, QWidget *parent);
// A label with a mnemonic ("&Name:") for a field; a screen reader takes it as the field's name.
[[nodiscard]] QLabel *makeLabel(const QString &text, QWidget *buddy, QWidget *parent);
// So that nothing jumps when the control comes and goes. A form's row gives the room away all the
// same: there the control needs a layout of its own around it.
void keepRoomWhenHidden(QWidget &control);
// Gives a control the name that tests and screen readers' scripts find it under; returns it.
template <class Control>
Control *named(const char *name, Control *control)
{
    control->setObjectName(QLatin1String(name));
    return control;
}

} // namespace nimbrel::form
