#include "assistants/widgets/PasswordField.h"

#include "app/Texts.h"
#include "assistant/Icons.h"
#include "assistants/widgets/CapsLock.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>

namespace nimbrel {

namespace {

constexpr Qt::InputMethodHints keptSecret =
    Qt::ImhSensitiveData | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase;

} // namespace

PasswordField::PasswordField(QWidget *parent) : QLineEdit(parent)
{
    setDragEnabled(false);
    addShowButton();
    addCapsLockSign();
    showText(false);
}

// The line's own buffer is given up first: then it is this text's alone, and overwritten where it
// lies.
PasswordField::~PasswordField()
{
    const QSignalBlocker silence(this);
    QString typed = text();
    setText(QString());
    typed.fill(u'\0');
}

SecureBuffer PasswordField::passphrase() const
{
    QByteArray bytes = text().toUtf8();
    SecureBuffer passphrase = SecureBuffer::copyOf(
        std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    bytes.fill('\0');
    return passphrase;
}

// The button itself takes no focus; its shortcut and the context menu serve the keyboard.
void PasswordField::addShowButton()
{
    _showAction = addAction(QIcon(), QLineEdit::TrailingPosition);
    _showAction->setObjectName(QStringLiteral("showPasswordAction"));
    _showAction->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_H));
    _showAction->setShortcutContext(Qt::WidgetShortcut);
    connect(_showAction, &QAction::triggered, this,
            [this] { showText(echoMode() == QLineEdit::Password); });
}

void PasswordField::addCapsLockSign()
{
    _capsLockAction = addAction(QIcon(), QLineEdit::TrailingPosition);
    _capsLockAction->setObjectName(QStringLiteral("capsLockAction"));
    _capsLockAction->setText(texts::tr("Caps Lock is on."));
    _capsLockAction->setVisible(false);
}

void PasswordField::paintActions()
{
    const QColor color = palette().color(QPalette::Text);
    const bool isHidden = echoMode() == QLineEdit::Password;
    _showAction->setIcon(icons::tinted(
        isHidden ? QStringLiteral("show-password") : QStringLiteral("hide-password"), color));
    _capsLockAction->setIcon(icons::tinted(QStringLiteral("caps-lock"), color));
}

void PasswordField::showText(bool visible)
{
    setEchoMode(visible ? QLineEdit::Normal : QLineEdit::Password);
    setInputMethodHints(inputMethodHints() | keptSecret); // Qt drops them for a readable text
    const QString text = visible ? texts::tr("Hide password") : texts::tr("Show password");
    _showAction->setText(text);
    _showAction->setToolTip(QStringLiteral("%1 (%2)").arg(
        text, _showAction->shortcut().toString(QKeySequence::NativeText)));
    paintActions();
}

void PasswordField::setCapsLockOn(bool isOn)
{
    if (isOn == _isCapsLockOn)
        return;
    _isCapsLockOn = isOn;
    _capsLockAction->setVisible(isOn);
    Q_EMIT capsLockChanged(isOn);
}

bool PasswordField::event(QEvent *event)
{
    if (event->type() == QEvent::KeyPress)
        setCapsLockOn(capsLock::isOnBehind(static_cast<QKeyEvent &>(*event), _isCapsLockOn));
    else if (event->type() == QEvent::Hide)
        showText(false); // nobody finds it readable on coming back
    return QLineEdit::event(event);
}

void PasswordField::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    setCapsLockOn(capsLock::isLightOn());
}

void PasswordField::focusOutEvent(QFocusEvent *event)
{
    QLineEdit::focusOutEvent(event);
    setCapsLockOn(false);
}

void PasswordField::changeEvent(QEvent *event)
{
    QLineEdit::changeEvent(event);
    const bool isNewLook =
        event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange;
    if (isNewLook && _capsLockAction != nullptr)
        paintActions();
}

void PasswordField::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addSeparator();
    menu->addAction(_showAction);
    menu->popup(event->globalPos());
}

} // namespace nimbrel
