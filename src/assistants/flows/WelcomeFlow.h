#pragma once

#include "assistants/NBWelcomeAssistant.h"
#include "volume/VolumeServices.h"

namespace nimbrel {

class NBApplication;
class NBPasswordAssistant;
class NBRootAssistant;

// showWelcomeAssistant
// Leads a new user from the first start to a mounted volume, on a new folder or on one that
// exists. What comes after a mount needs the flow no more, but the application and its services.
class WelcomeFlow final
{
public:
    // Without a picker, the desktop's own panel picks an existing folder.
    WelcomeFlow(NBApplication &application, VolumeServices &services, FolderPicker pickFolder = {});

    void showWelcomeAssistant(); // blocks until the assistant is closed

private:
    void openFolder(const NBWelcomeAssistant &page);
    void createFolder(const NBRootAssistant &root, const NBPasswordAssistant &password);

    NBApplication &_application;
    VolumeServices &_services;
    FolderPicker _pickFolder;
};

} // namespace nimbrel
