// Label, cipher and mount options of a folder.
#pragma once

#include "assistants/AssistantPage.h"
#include "assistants/views/AdvancedAssistantView.h"

#include <memory>

namespace nimbrel {

class NBApplication;
class NBNimbrelVolume;

class NBAdvancedAssistant final : public AssistantPage<AdvancedAssistantView>
{
    Q_OBJECT

public:
    explicit NBAdvancedAssistant(NBApplication &application) : _application(application) {}

    // The step runs alone, on an existing folder.
    [[nodiscard]] bool isOpen() const noexcept { return _isOpen; }
    void setIsOpen(bool isOpen);
    // The volume that is being edited; null for none.
    [[nodiscard]] const std::shared_ptr<NBNimbrelVolume> &workingVolume() const noexcept
    {
        return _workingVolume;
    }
    void setWorkingVolume(std::shared_ptr<NBNimbrelVolume> volume);

    [[nodiscard]] QStringList orderedSteps() const override;
    void start() override;
    void nextPressed() override;
    void prevPressed() override;

    [[nodiscard]] bool checkAdvanced(); // tells the user what is wrong
    void configButton_Click();          // configButton_Click:
    void configBrowseButton_Click();    // configBrowseButton_Click:
    void selectEnableSpotlight();       // selectEnableSpotlight:

    // What the controls say. The key size follows from the algorithm's title: 128, 192, else 256
    // bits; the block size is a signed 32-bit integer, 0 for text that is none.
    [[nodiscard]] qint64 keySize() const;
    [[nodiscard]] qint32 blockSize() const;

protected:
    void connectControls() override;

private:
    void takeLabelOfRootAssistant();
    void showAsOpen();
    [[nodiscard]] bool isLabelTaken() const;
    [[nodiscard]] bool checkConfigPath(); // tells the user

    NBApplication &_application;
    bool _isOpen = false;
    std::shared_ptr<NBNimbrelVolume> _workingVolume;
};

} // namespace nimbrel
