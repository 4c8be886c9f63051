#pragma once

#include <QWidget>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace nimbrel {

// At first as a new volume is in simple mode.
class AdvancedAssistantView final : public QWidget
{
    Q_OBJECT

public:
    explicit AdvancedAssistantView(QWidget *parent = nullptr);

    // What only a new folder can choose; containerView moves up into its room.
    void setCipherHidden(bool hidden);

    QLineEdit *labelTextField;
    QLabel *algorithmLabelTextField;
    QComboBox *algorithmButton;
    QLabel *blockSizeLabelTextField;
    QLineEdit *blockSizeTextField;
    QLabel *blockSizeBytesLabelTextField;
    QCheckBox *filenameEncryptionButton;
    QWidget *containerView = nullptr; // holds the controls below
    QCheckBox *automountButton;
    QCheckBox *checkKeyButton;
    QCheckBox *spotlightButton;
    QCheckBox *mountAsLocalDiskButton;
    QCheckBox *mountForAllUsersButton;
    QCheckBox *configButton;
    QLineEdit *configTextField; // as enabled as its button
    QPushButton *configBrowseButton;

private:
    QCheckBox *makeButton(const char *name, const QString &title, const QString &toolTip);
    void setInitialValues();
    void addCipherRows();
    void fillContainer();
    void addConfigRow(QVBoxLayout &options);

    QFormLayout *_fields = nullptr;
    int _firstCipherRow = 0;
    int _lastCipherRow = 0;
};

} // namespace nimbrel
