// The first thing that a new user sees: make a new encrypted folder, or open one.
#pragma once

#include "assistants/AssistantPage.h"
#include "assistants/views/WelcomeAssistantView.h"

#include <functional>

namespace nimbrel {

// Lets the user pick an existing encrypted folder, in a sheet on `window`; calls the handler with
// its path, or not at all on a cancel. Returns at once.
using FolderPicker =
    std::function<void(QWidget &window, std::function<void(const QString &path)> handler)>;

class NBWelcomeAssistant final : public AssistantPage<WelcomeAssistantView>
{
    Q_OBJECT

public:
    // Without a picker, the desktop's own panel picks a folder.
    explicit NBWelcomeAssistant(FolderPicker pickFolder = {}) : _pickFolder(std::move(pickFolder))
    {
    }

    [[nodiscard]] QStringList orderedSteps() const override;
    void start() override;
    void nextPressed() override;

    void welcomeMatrixSelectionChanged(); // welcomeMatrixSelectionChanged:
    bool checkRoot();                     // false with its reason in the inline warning
    void chooseFolder();                  // chooseFolder:
    void setWarningValue(const QString &text);

    [[nodiscard]] bool wantsNewFolder() const; // row 0 is chosen

protected:
    void connectControls() override;

private:
    void openExistingFolder();
    void useFolder(const QUrl &url);

    FolderPicker _pickFolder;
};

} // namespace nimbrel
