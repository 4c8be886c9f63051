#pragma once

#include "assistants/widgets/Warning.h"

#include <QWidget>

class QFormLayout;
class QLineEdit;

namespace nimbrel {

class PathControl;
class PopUpButton;

class RootAssistantView final : public QWidget
{
    Q_OBJECT

public:
    explicit RootAssistantView(QWidget *parent = nullptr);

    QLineEdit *folderNameTextField;  // takes no name that no folder can have
    PopUpButton *foldersPopUpButton; // an item's data is its QUrl; item 0 is there
    PathControl *rootPathControl;
    Warning warning; // warningImage, warningTextField

private:
    void setUpName();
    [[nodiscard]] QFormLayout *makeFields();
};

} // namespace nimbrel
