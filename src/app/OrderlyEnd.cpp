#include "app/OrderlyEnd.h"

#include "app/AlertPresenter.h"
#include "app/NBAppDelegate.h"
#include "app/SystemLog.h"
#include "app/TextFormat.h"
#include "app/Texts.h"
#include "app/Util.h"
#include "volume/NBVolumesController.h"

#include <QApplication>
#include <QThread>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace nimbrel {

namespace {

using namespace std::chrono_literals;

constexpr auto step = 20ms;
// A disk that neither goes nor refuses: its store hangs.
constexpr auto longestUnmount = 30s;

// At the end nobody is there to answer.
class SilentPresenter final : public AlertPresenter
{
public:
    int runModal(const Alert &alert) override
    {
        systemLog(alert.messageText + u' ' + alert.informativeText);
        return alert.answerOfNobody();
    }
};

// Each window that holds the user is closed as by its own cancel. One that asks again stays, and is
// waited for.
void cancelQuestions()
{
    constexpr int most = 16;
    for (int i = 0; i < most; ++i) {
        QWidget *window = QApplication::activeModalWidget();
        if (window == nullptr || !window->close())
            return;
    }
}

QString labelsOfMounted(const QList<VolumePtr> &volumes)
{
    QStringList labels;
    for (const VolumePtr &volume : volumes)
        if (volume->isMounted())
            labels.append(volume->label());
    return labels.join(QStringLiteral(", "));
}

} // namespace

OrderlyEnd::OrderlyEnd(NBAppDelegate &delegate) : _delegate(delegate)
{
    _looking.setInterval(step);
    connect(&_looking, &QTimer::timeout, this, &OrderlyEnd::look);
}

void OrderlyEnd::quit()
{
    if (_isQuitting || _isTerminating)
        return;
    if (!_delegate.hasVolumesController())
        return terminate();
    _isQuitting = true;
    cancelQuestions();
    QMetaObject::invokeMethod(this, &OrderlyEnd::begin, Qt::QueuedConnection);
}

void OrderlyEnd::begin()
{
    noteArriving();
    _delegate.volumesController().saveVolumes();
    _delegate.volumesController().unmountVolumes();
    unmountLeftBehind();
    _since.start();
    _looking.start();
}

void OrderlyEnd::noteArriving()
{
    _arriving.clear();
    for (const VolumePtr &volume : std::as_const(_delegate.volumesController().volumes()))
        if (volume->isBusy() && !volume->isMounted())
            _arriving.append(volume);
}

void OrderlyEnd::unmountArrived()
{
    _arriving.removeIf([this](const std::weak_ptr<NBNimbrelVolume> &weak) {
        const VolumePtr volume = weak.lock();
        if (volume && volume->isBusy())
            return false;
        if (volume && volume->isMounted())
            _delegate.volumesController().unmountVolume(volume);
        return true;
    });
}

// Not through quit(), which asks every window whether it may be closed.
void OrderlyEnd::terminate()
{
    _isTerminating = true;
    _looking.stop();
    QCoreApplication::exit(0);
}

// Of the list, and those that refused to go when they left it.
QList<VolumePtr> OrderlyEnd::disks() const
{
    const NBVolumesController &controller = _delegate.volumesController();
    return controller.volumes() + controller.leftBehind();
}

void OrderlyEnd::unmountLeftBehind()
{
    for (const VolumePtr &volume : _delegate.volumesController().leftBehind())
        _delegate.volumesController().unmountVolume(volume);
}

bool OrderlyEnd::isAnyBusy() const
{
    return std::ranges::any_of(disks(), [](const VolumePtr &volume) { return volume->isBusy(); });
}

bool OrderlyEnd::isAnyMounted() const
{
    return std::ranges::any_of(disks(),
                               [](const VolumePtr &volume) { return volume->isMounted(); });
}

void OrderlyEnd::look()
{
    unmountArrived();
    const bool isInTime = !_since.hasExpired(std::chrono::milliseconds(longestUnmount).count());
    if ((isAnyBusy() && isInTime) || QApplication::activeModalWidget() != nullptr)
        return;
    _looking.stop();
    if (isAnyMounted())
        QMetaObject::invokeMethod(this, &OrderlyEnd::askAboutDisksInUse, Qt::QueuedConnection);
    else
        terminate();
}

// The disk itself has told who uses it.
void OrderlyEnd::askAboutDisksInUse()
{
    const QString labels = labelsOfMounted(disks());
    if (labels.isEmpty())
        return terminate();
    _isQuitting = false;
    const int answer = Util::showAlert(
        asFormat(formatted(
            texts::tr("Still in use: %@. Programs that have files open there can't save them any "
                      "more when Nimbrel quits."),
            {labels})),
        texts::tr("Do you really want to quit Nimbrel?"),
        {texts::tr("Cancel"), texts::tr("Quit"), true});
    if (answer == 0)
        terminate();
}

void OrderlyEnd::finish(std::chrono::milliseconds patience)
{
    if (!_delegate.hasVolumesController())
        return;
    SilentPresenter silence;
    Util::setAlertPresenter(&silence);
    _delegate.stopAsking();
    noteArriving();
    _delegate.applicationWillTerminate();
    unmountLeftBehind();
    _since.start();
    while ((isAnyBusy() || !_arriving.isEmpty()) && !_since.hasExpired(patience.count())) {
        QCoreApplication::processEvents();
        unmountArrived();
        QThread::msleep(static_cast<unsigned long>(step.count()));
    }
    Util::setAlertPresenter(nullptr);
}

} // namespace nimbrel
