#include "volume/Background.h"

#include <QThread>

#include <algorithm>

namespace nimbrel {

namespace {

// Most of the work waits, for the system or for a store, so there are more threads than cores.
class Pool final : public QThreadPool
{
public:
    Pool()
    {
        constexpr int fewest = 8;
        setObjectName(QStringLiteral("Background"));
        setMaxThreadCount(std::max(fewest, QThread::idealThreadCount()));
        qAddPostRoutine([] { backgroundPool().waitForDone(); }); // results go to the application
    }
};

} // namespace

QThreadPool &backgroundPool()
{
    static Pool pool;
    return pool;
}

} // namespace nimbrel
