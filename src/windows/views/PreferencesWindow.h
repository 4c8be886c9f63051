#pragma once

#include <QDialog>

class QCheckBox;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace nimbrel {

class PreferencesWindow final : public QDialog
{
    Q_OBJECT

public:
    explicit PreferencesWindow(QWidget *parent);

    QCheckBox *autostartButton;
    QCheckBox *createAliasesButton;
    QCheckBox *addVolumePrefixButton;
    QCheckBox *fileManagerActionsButton;
    QLabel *lastUpdateCheckTextField;
    QPushButton *checkNowButton;
    QLabel *updateHintTextField; // what a check says to whom
    QPushButton *closeButton;    // the default one

    // Every way out comes here. A second one, while willClose still asks the user, does nothing.
    void done(int result) override;

Q_SIGNALS:
    void willClose(); // still on show

private:
    [[nodiscard]] QVBoxLayout *makeExplained(QCheckBox *button, const QString &explanation);
    void addSettings(QVBoxLayout &column);
    void addUpdates(QVBoxLayout &column);

    bool _isClosing = false;
};

} // namespace nimbrel
