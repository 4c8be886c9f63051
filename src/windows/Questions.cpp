#include "windows/Questions.h"

#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "volume/NBNimbrelVolume.h"

namespace nimbrel::questions {

bool isYes(const QString &text, const QString &title)
{
    return Util::showAlert(text, title,
                           {.defaultButton = texts::tr("No"),
                            .alternateButton = texts::tr("Yes"),
                            .isDefaultHarmless = true}) == 0;
}

void tellInvalidFolder()
{
    Util::showAlert(texts::tr("If the folder is being synchronized right now, please wait until "
                              "the whole folder has been synchronized and try again."),
                    texts::tr("This is not a valid Nimbrel Folder."));
}

void tellBusy(const NBNimbrelVolume &volume)
{
    Util::showAlert(texts::tr("It is being mounted or unmounted. Please wait until that has ended "
                              "and try again."),
                    formatted(texts::tr("\"%@\" is busy."), {volume.label()}));
}

} // namespace nimbrel::questions
