#pragma once

#include "crypto/SecureBuffer.h"

#include <QLineEdit>

class QAction;

namespace nimbrel {

// Takes a password: hidden as it is typed, with a button that shows it and a sign while Caps Lock
// is on. No input method learns from it, and it can't be dragged out.
class PasswordField final : public QLineEdit
{
    Q_OBJECT

public:
    explicit PasswordField(QWidget *parent = nullptr);
    ~PasswordField() override; // overwrites the text

    // The text as UTF-8.
    [[nodiscard]] SecureBuffer passphrase() const;
    [[nodiscard]] bool isCapsLockOn() const noexcept { return _isCapsLockOn; }

Q_SIGNALS:
    void capsLockChanged(bool isOn); // only while the field has the focus

protected:
    bool event(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void changeEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void addShowButton();
    void addCapsLockSign();
    void paintActions();
    void showText(bool visible);
    void setCapsLockOn(bool isOn);

    QAction *_showAction = nullptr;
    QAction *_capsLockAction = nullptr;
    bool _isCapsLockOn = false;
};

} // namespace nimbrel
