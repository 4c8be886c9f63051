// The closing step: see the disk, back up the configuration.
#pragma once

#include "assistants/AssistantPage.h"
#include "assistants/views/SuccessAssistantView.h"

namespace nimbrel {

struct FileError;

class NBSuccessAssistant final : public AssistantPage<SuccessAssistantView>
{
    Q_OBJECT

public:
    [[nodiscard]] const QString &configPath() const noexcept { return _configPath; }
    void setConfigPath(const QString &path) { _configPath = path; }

    [[nodiscard]] QStringList orderedSteps() const override;
    void start() override;

    void backupButton_Click(); // backupButton_Click:

protected:
    void connectControls() override;

private:
    void backUpTo(const QString &path);
    // Success is told whether or not there is a backup (kept); this is the truth behind it.
    void takeBackSuccess(const FileError &error);

    QString _configPath;
};

} // namespace nimbrel
