// Qt loads this into a program that knows nothing of it, with
//   QT_PLUGIN_PATH=FOLDER QT_QPA_GENERIC_PLUGINS=nimbrelobserver
// and it talks over the socket that NIMBREL_OBSERVER_SOCKET names. Everything that a person does is
// done from outside, by the display's own keyboard and mouse.
#include "observer/ObserverSocket.h"

#include <QGenericPlugin>
#include <QtPlugin>

namespace nimbrel::observer {

class ObserverPlugin final : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "observer.json")

public:
    // Qt deletes it with the application object.
    QObject *create(const QString & /*name*/, const QString & /*specification*/) override
    {
        return new ObserverSocket(qEnvironmentVariable("NIMBREL_OBSERVER_SOCKET"));
    }
};

} // namespace nimbrel::observer

#include "ObserverPlugin.moc"
