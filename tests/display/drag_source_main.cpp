// A file manager's icon: a small window from which the mouse drags one file.
//
// drag_source FILE
// Standard output: ready when the window stands, dropped or refused at each drag's end.
#include <QApplication>
#include <QDrag>
#include <QFileInfo>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>

#include <cstdio>

namespace {

void say(const char *what)
{
    std::puts(what);
    std::fflush(stdout);
}

class Icon final : public QLabel
{
public:
    explicit Icon(const QString &path) : QLabel(QFileInfo(path).fileName()), _path(path)
    {
        setWindowTitle(QStringLiteral("Drag source"));
        setAlignment(Qt::AlignCenter);
        setFixedSize(160, 80);
    }

protected:
    void mousePressEvent(QMouseEvent *event) override { _pressed = event->position().toPoint(); }

    void mouseMoveEvent(QMouseEvent *event) override
    {
        const QPoint way = event->position().toPoint() - _pressed;
        if (_isDragging || way.manhattanLength() < QApplication::startDragDistance())
            return;
        _isDragging = true;
        drag();
        _isDragging = false;
    }

private:
    void drag()
    {
        auto *file = new QMimeData; // the drag's, which Qt deletes
        file->setUrls({QUrl::fromLocalFile(_path)});
        auto *drag = new QDrag(this);
        drag->setMimeData(file);
        const Qt::DropAction action =
            drag->exec(Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::CopyAction);
        say(action == Qt::IgnoreAction ? "refused" : "dropped");
    }

    QString _path;
    QPoint _pressed;
    bool _isDragging = false;
};

} // namespace

int main(int count, char **arguments)
{
    QApplication application(count, arguments);
    Icon icon(QApplication::arguments().value(1));
    icon.show();
    say("ready");
    return QApplication::exec();
}
