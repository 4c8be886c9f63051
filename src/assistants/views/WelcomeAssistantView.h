#pragma once

#include "assistants/widgets/Warning.h"

#include <QWidget>

class QCheckBox;
class QPushButton;
class QVBoxLayout;

namespace nimbrel {

class PathControl;
class WelcomeMatrix;

// Opens with the first row chosen and nothing of the second one's on show. What is hidden keeps its
// room.
class WelcomeAssistantView final : public QWidget
{
    Q_OBJECT

public:
    explicit WelcomeAssistantView(QWidget *parent = nullptr);

    WelcomeMatrix *welcomeMatrix; // row 0: create a new folder; row 1: open an existing one
    PathControl *pathControl;
    QPushButton *chooseButton;
    QCheckBox *openVolumeButton;
    Warning warning;

    void setFolderControlsHidden(bool hidden) const; // all of the second row's but the warning

private:
    [[nodiscard]] QVBoxLayout *makeFolderControls() const;
    void keepRoomWhenHidden() const;
};

} // namespace nimbrel
