#pragma once

#include <QWidget>

class QCheckBox;

namespace nimbrel {

class PasswordField;
class PathControl;

class EnterPassphraseAssistantView final : public QWidget
{
    Q_OBJECT

public:
    explicit EnterPassphraseAssistantView(QWidget *parent = nullptr);

    PathControl *customPathControl;
    PasswordField *passphraseTextField;
    // In the engine's special view while the page is on show; the engine gives it back.
    QCheckBox *rememberButton;
};

} // namespace nimbrel
