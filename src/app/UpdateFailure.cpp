#include "app/UpdateFailure.h"

#include "app/TextFormat.h"
#include "app/Texts.h"

namespace nimbrel {

namespace {

// Formats: the host, then the detail.
QString formatOf(UpdateFailure::Cause cause)
{
    switch (cause) {
    case UpdateFailure::Cause::Disk:
        return texts::tr("A disk with a synchronised folder doesn't answer, so %@ was not asked. "
                         "Reconnect or unmount network disks, then try again.");
    case UpdateFailure::Cause::Offline:
        return texts::tr(
            "%@ can't be reached. Check that this computer is online, then try again.");
    case UpdateFailure::Cause::Timeout:
        return texts::tr("%@ didn't answer in time. Try again later.");
    case UpdateFailure::Cause::Insecure:
        return texts::tr("No secure connection to %@ is possible, so nothing was asked: %@. Check "
                         "this computer's date, and whether the network wants you to sign in "
                         "first, then try again.");
    case UpdateFailure::Cause::Redirected:
        return texts::tr("%@ sent the request on too often, or to a place that isn't secure, where "
                         "nothing was asked. Try again later.");
    case UpdateFailure::Cause::Status:
        return texts::tr("%@ answered with the error %@. Try again later.");
    case UpdateFailure::Cause::TooBig:
        return texts::tr("%@ sent more than a list of versions ever has. Check whether the network "
                         "wants you to sign in first, then try again.");
    case UpdateFailure::Cause::NotAFeed:
        return texts::tr("%@ didn't send a list of versions (%@). Check whether the network wants "
                         "you to sign in first, then try again.");
    case UpdateFailure::Cause::Broken:
        return texts::tr("The connection to %@ failed: %@. Try again later.");
    }
    return {};
}

// Foreign texts may end with a full stop or not.
QString withoutStop(QString text)
{
    text = text.trimmed();
    return text.endsWith(u'.') ? text.chopped(1) : text;
}

const char *nameOf(UpdateFailure::Cause cause)
{
    constexpr const char *names[] = {"disk",   "offline", "timeout",    "insecure", "redirected",
                                     "status", "too big", "not a feed", "broken"};
    return names[static_cast<std::size_t>(cause)];
}

} // namespace

QString UpdateFailure::line(const QString &host) const
{
    QString line =
        QStringLiteral("No check for updates with %1: %2").arg(host, QLatin1String(nameOf(cause)));
    return detail.isEmpty() ? line : line + QStringLiteral(" (%1)").arg(detail);
}

QString UpdateFailure::explanation(const QString &host) const
{
    return formatted(formatOf(cause), {host, withoutStop(detail)});
}

} // namespace nimbrel
