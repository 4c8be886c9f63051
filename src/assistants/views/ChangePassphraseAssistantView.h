#pragma once

#include <QWidget>

class QCheckBox;
class QFormLayout;
class QProgressBar;

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
    QProgressBar *busyIndicator; // while the change goes on; keeps its room when hidden

private:
    [[nodiscard]] QFormLayout *makeFields();
};

} // namespace nimbrel
