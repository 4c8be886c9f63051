#pragma once

#include "platform/RunningApplication.h"

#include <QObject>
#include <QVariantMap>

namespace nimbrel {

// This process as the session's one application: owner of the name com.nimbrel.Nimbrel, with the
// interface org.freedesktop.Application (Desktop Entry Specification 1.5, "D-Bus Activation").
// Main thread only.
class ApplicationBus final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    enum class Ownership
    {
        Ours,
        Anothers,
        NoBus // the program runs all the same
    };
    [[nodiscard]] Ownership takeName();

public Q_SLOTS: // the interface
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    void ActivateAction(const QString &name, const QVariantList &parameters,
                        const QVariantMap &platformData);

Q_SIGNALS:
    void requested(const nimbrel::ApplicationRequest &request);
};

} // namespace nimbrel
