#include "volume/MountFailureAlert.h"

#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "volume/TextConversion.h"

#include <QDeadlineTimer>
#include <QHash>

#include <chrono>

namespace nimbrel {

void showMountFailure(const QString &label, const MountFailure &failure)
{
    using namespace std::chrono_literals;
    static QHash<QString, QDeadlineTimer> told;
    const QString reason = qtText(failure.message);
    if (told.contains(reason) && !told.value(reason).hasExpired())
        return;
    told.removeIf([](const auto &entry) { return entry.value().hasExpired(); });
    told.insert(reason, QDeadlineTimer(QDeadlineTimer::Forever));
    Util::showAlert(asFormat(reason),
                    formatted(texts::tr("\"%@\" could not be mounted."), {label}));
    told.insert(reason, QDeadlineTimer(1s));
}

} // namespace nimbrel
