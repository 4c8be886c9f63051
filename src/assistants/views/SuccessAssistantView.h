#pragma once

#include <QWidget>

class QCheckBox;
class QPushButton;

namespace nimbrel {

class SuccessAssistantView final : public QWidget
{
    Q_OBJECT

public:
    explicit SuccessAssistantView(QWidget *parent = nullptr);

    QPushButton *backupButton;
    QCheckBox *openVolumeButton; // on at first
};

} // namespace nimbrel
