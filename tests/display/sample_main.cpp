// A program with one of each thing that the tests' person points at, so that what serves all other
// scenarios here is tested by itself. The label "outcome" shows what the last act has done.
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDropEvent>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSystemTrayIcon>
#include <QTableWidget>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

QIcon plainIcon(const QColor &color)
{
    QPixmap pixmap(32, 32);
    pixmap.fill(color);
    return {pixmap};
}

class Outcome final : public QLabel
{
public:
    explicit Outcome(QWidget *parent) : QLabel(QStringLiteral("nothing yet"), parent)
    {
        setObjectName(QStringLiteral("outcome"));
        setAcceptDrops(true);
    }

protected:
    void dragEnterEvent(QDragEnterEvent *event) override { event->acceptProposedAction(); }
    void dropEvent(QDropEvent *event) override
    {
        setText(event->mimeData()->urls().value(0).toLocalFile());
        event->acceptProposedAction();
    }
};

class Window final : public QMainWindow
{
public:
    Window()
    {
        setWindowTitle(QStringLiteral("Sample"));
        resize(400, 400);
        setCentralWidget(new QWidget(this));
        auto *rows = new QVBoxLayout(centralWidget());
        _outcome = new Outcome(centralWidget());
        rows->addWidget(_outcome);
        addButtons(*rows);
        addTable(*rows);
        addTray();
    }

private:
    void tell(const QString &text) { _outcome->setText(text); }

    void addButtons(QVBoxLayout &rows)
    {
        QAction *warn = addToolBar(QString())->addAction(QStringLiteral("&Warn"));
        warn->setObjectName(QStringLiteral("warn"));
        warn->setToolTip(QStringLiteral("Shows an alert"));
        QObject::connect(warn, &QAction::triggered, this, &Window::warn);
        auto *box = new QCheckBox(QStringLiteral("&Box"), this);
        box->setObjectName(QStringLiteral("box"));
        rows.addWidget(box);
        auto *list = new QComboBox(this);
        list->setObjectName(QStringLiteral("list"));
        list->addItems({QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")});
        rows.addWidget(list);
    }

    void warn()
    {
        QMessageBox alert(this);
        alert.setText(QStringLiteral("A headline"));
        alert.setInformativeText(QStringLiteral("A detail\nin two lines"));
        alert.addButton(QStringLiteral("&Go on"), QMessageBox::AcceptRole);
        alert.setDefaultButton(alert.addButton(QStringLiteral("Stop"), QMessageBox::RejectRole));
        alert.exec();
        tell(alert.clickedButton()->text());
    }

    void addTable(QVBoxLayout &rows)
    {
        auto *table = new QTableWidget(3, 2, this);
        table->setObjectName(QStringLiteral("table"));
        table->setSelectionBehavior(QAbstractItemView::SelectRows);
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 2; ++column)
                table->setItem(row, column,
                               new QTableWidgetItem(QStringLiteral("%1-%2").arg(row).arg(column)));
        table->setContextMenuPolicy(Qt::CustomContextMenu);
        QObject::connect(table, &QWidget::customContextMenuRequested, this,
                         [this, table](const QPoint &place) {
                             openMenu(table->viewport()->mapToGlobal(place));
                         });
        rows.addWidget(table);
    }

    void openMenu(const QPoint &place)
    {
        QMenu menu;
        menu.addAction(QStringLiteral("&Open"), this, [this] { tell(QStringLiteral("opened")); });
        menu.addSeparator();
        menu.addAction(QStringLiteral("Never"))->setEnabled(false);
        menu.addMenu(QStringLiteral("More"))->addAction(QStringLiteral("Deep"), this, [this] {
            tell(QStringLiteral("deep"));
        });
        menu.exec(place);
    }

    void addTray()
    {
        _tray.setIcon(plainIcon(Qt::red));
        _tray.setToolTip(QStringLiteral("A sample's icon"));
        QObject::connect(&_tray, &QSystemTrayIcon::activated, this,
                         [this](QSystemTrayIcon::ActivationReason reason) {
                             if (reason == QSystemTrayIcon::Trigger)
                                 tell(QStringLiteral("icon clicked"));
                         });
        QObject::connect(&_trayMenu, &QMenu::aboutToShow, this, &Window::fillTrayMenu);
        _tray.setContextMenu(&_trayMenu);
        _tray.show();
    }

    void fillTrayMenu()
    {
        _trayMenu.clear();
        _trayMenu.addAction(QStringLiteral("&Blue"), this,
                            [this] { _tray.setIcon(plainIcon(Qt::blue)); });
        _trayMenu.addSeparator();
        _trayMenu.addAction(QStringLiteral("Never"))->setEnabled(false);
        _trayMenu.addAction(QStringLiteral("&Quit"), qApp, &QApplication::quit);
    }

    Outcome *_outcome = nullptr;
    QMenu _trayMenu;
    QSystemTrayIcon _tray;
};

} // namespace

int main(int count, char **arguments)
{
    QApplication application(count, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    Window window;
    window.show();
    return QApplication::exec();
}
