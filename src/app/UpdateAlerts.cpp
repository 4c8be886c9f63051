#include "app/UpdateAlerts.h"

#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/UpdateFailure.h"
#include "app/Util.h"

namespace nimbrel {

void tellUpToDate(const QString &version)
{
    Util::showAlert(
        asFormat(
            formatted(texts::tr("There is no newer version than %@, which you have."), {version})),
        texts::tr("Nimbrel is up to date."));
}

void tellFailure(const UpdateFailure &failure, const QString &host)
{
    Util::showAlert(asFormat(failure.explanation(host)),
                    texts::tr("Nimbrel could not look for updates."));
}

} // namespace nimbrel
