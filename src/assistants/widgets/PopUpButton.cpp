#include "assistants/widgets/PopUpButton.h"

#include <QKeyEvent>
#include <QWheelEvent>

namespace nimbrel {

namespace {

bool wouldChangeChoice(const QKeyEvent &press)
{
    switch (press.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        return true;
    default: // a letter goes to the next item that begins with it
        return !press.text().isEmpty() && press.text().front().isPrint();
    }
}

} // namespace

void PopUpButton::keyPressEvent(QKeyEvent *event)
{
    if (wouldChangeChoice(*event))
        showPopup();
    else
        QComboBox::keyPressEvent(event);
}

void PopUpButton::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

} // namespace nimbrel
