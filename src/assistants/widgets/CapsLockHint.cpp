#include "assistants/widgets/CapsLockHint.h"

#include "app/Texts.h"
#include "assistants/widgets/Form.h"
#include "assistants/widgets/PasswordField.h"

#include <QAccessible>

namespace nimbrel {

CapsLockHint::CapsLockHint(QWidget *parent) : QLabel(texts::tr("Caps Lock is on."), parent)
{
    setObjectName(QStringLiteral("capsLockHint"));
    setTextFormat(Qt::PlainText);
    form::keepRoomWhenHidden(*this);
    hide();
}

void CapsLockHint::watch(PasswordField &field)
{
    connect(&field, &PasswordField::capsLockChanged, this, [this](bool isOn) {
        setVisible(isOn);
        if (!isOn)
            return;
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    });
}

} // namespace nimbrel
