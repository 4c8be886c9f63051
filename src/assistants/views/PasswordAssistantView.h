#pragma once

#include <QWidget>

class QCheckBox;
class QFormLayout;
class QLabel;
class QVBoxLayout;

namespace nimbrel {

class NBPassphraseStrengthIndicator;
class PasswordField;

class PasswordAssistantView final : public QWidget
{
    Q_OBJECT

public:
    explicit PasswordAssistantView(QWidget *parent = nullptr);

    PasswordField *passphraseTextField;
    PasswordField *confirmTextField;
    QCheckBox *rememberButton;                        // on at first
    NBPassphraseStrengthIndicator *strengthIndicator; // watches passphraseTextField
    QLabel *strengthLabel;
    QLabel *guessTimeLabel; // how long guessing takes; empty without a password

private:
    [[nodiscard]] QFormLayout *makeFields();
    [[nodiscard]] QVBoxLayout *makeStrength() const;
    void showGuessTime(const QString &passphrase) const;
};

} // namespace nimbrel
