#pragma once

#include <QWidget>

class QCheckBox;
class QFormLayout;

namespace nimbrel {

class PasswordField;
class PathControl;

class ChangePassphraseAssistantView final : public QWidget
{
    Q_OBJECT

public:
    explicit ChangePassphraseAssistantView(QWidget *parent = nullptr);

    PathControl *customPathControl; // whose password it is
    PasswordField *oldPassphraseTextField;
    PasswordField *passphraseTextField;
    PasswordField *confirmTextField;
    QCheckBox *rememberButton;

private:
    [[nodiscard]] QFormLayout *makeFields();
};

} // namespace nimbrel
