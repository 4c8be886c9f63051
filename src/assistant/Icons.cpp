#include "assistant/Icons.h"

#include "platform/SystemFacts.h"

#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QStandardPaths>
#include <QSvgRenderer>

#include <memory>

// Outside the namespace, as Qt wants it: a static library's resources aren't there by themselves.
static void loadIconResources()
{
    Q_INIT_RESOURCE(icons);
}

namespace nimbrel::icons {

namespace {

// Our drawing, at any size and in a colour of its own where one is given.
class DrawnIcon final : public QIconEngine
{
public:
    DrawnIcon(std::shared_ptr<QSvgRenderer> drawing, const QColor &color)
        : _drawing(std::move(drawing)), _color(color)
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        const double scale = painter->device()->devicePixelRatio();
        QPixmap drawn = pixmap(rect.size() * scale, mode, state);
        drawn.setDevicePixelRatio(scale);
        painter->drawPixmap(rect.topLeft(), drawn);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State) override
    {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        if (mode == QIcon::Disabled)
            painter.setOpacity(0.4);
        _drawing->render(&painter, QRectF(QPointF(), QSizeF(size)));
        if (_color.isValid()) {
            painter.setOpacity(1);
            painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
            painter.fillRect(drawn.rect(), _color);
        }
        return drawn;
    }

    // What pixmaps are asked for by: the size alone, whatever the scale.
    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State state, qreal) override
    {
        return pixmap(size, mode, state);
    }

    [[nodiscard]] QIconEngine *clone() const override { return new DrawnIcon(_drawing, _color); }

private:
    std::shared_ptr<QSvgRenderer> _drawing;
    QColor _color;
};

QIcon drawn(const QString &name, const QColor &color)
{
    loadIconResources();
    const QString path = QStringLiteral(":/icons/%1.svg").arg(name);
    if (!QFile::exists(path))
        return {};
    return QIcon(new DrawnIcon(std::make_shared<QSvgRenderer>(path), color));
}

// The names of the freedesktop Icon Naming Specification.
QString themeName(const QString &name)
{
    static const QHash<QString, QString> names{
        {QStringLiteral("NSCaution"), QStringLiteral("dialog-warning")},
        {QStringLiteral("folder"), QStringLiteral("folder")},
        {QStringLiteral("documents"), QStringLiteral("folder-documents")},
    };
    return names.value(name);
}

} // namespace

QIcon named(const QString &name)
{
    const QString theme = themeName(name);
    if (!theme.isEmpty() && QIcon::hasThemeIcon(theme))
        return QIcon::fromTheme(theme);
    return drawn(name, {});
}

QIcon tinted(const QString &name, const QColor &color)
{
    return drawn(name, color);
}

QIcon forFolder(const QString &path)
{
    const bool isDocuments =
        path == QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return named(isDocuments ? QStringLiteral("documents") : QStringLiteral("folder"));
}

} // namespace nimbrel::icons
