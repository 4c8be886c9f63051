// Where the new folder goes.
#pragma once

#include "assistants/AssistantPage.h"
#include "assistants/views/RootAssistantView.h"

namespace nimbrel {

class NBApplication;

class NBRootAssistant final : public AssistantPage<RootAssistantView>
{
    Q_OBJECT

public:
    explicit NBRootAssistant(NBApplication &application) : _application(application) {}

    [[nodiscard]] QStringList orderedSteps() const override;
    void start() override;
    void nextPressed() override;

    void updateRootPath();
    // False with its reason in warningTextField; the text stays as it was on success.
    [[nodiscard]] bool checkRootPath();
    void selectionChanged() { updateRootPath(); }     // selectionChanged:
    void controlTextDidChange() { updateRootPath(); } // controlTextDidChange:
    // chooseOtherPath:  The action of the location "Other…". On a cancel that item stays chosen,
    // without a place at first: then there is no path.
    void chooseOtherPath();

protected:
    void connectControls() override;

private:
    void fillLocations();

    NBApplication &_application;
    int _otherItem = -1; // index of "Other…", once it is there
};

} // namespace nimbrel
