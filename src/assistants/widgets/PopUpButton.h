#pragma once

#include <QComboBox>

namespace nimbrel {

// A choice that is made in its open list alone: keys open the list, the wheel does nothing. So an
// item that acts ("Other…") isn't set off on the way to another one.
class PopUpButton final : public QComboBox
{
    Q_OBJECT

public:
    using QComboBox::QComboBox;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
};

} // namespace nimbrel
