#pragma once

#include <QLabel>

namespace nimbrel {

class PasswordField;

// The line "Caps Lock is on." for the password fields of one page; keeps its room when hidden.
class CapsLockHint final : public QLabel
{
    Q_OBJECT

public:
    explicit CapsLockHint(QWidget *parent = nullptr);

    void watch(PasswordField &field);
};

} // namespace nimbrel
