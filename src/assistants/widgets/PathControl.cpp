#include "assistants/widgets/PathControl.h"

#include "assistant/Icons.h"
#include "platform/SystemFacts.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>

namespace nimbrel {

namespace {

// Names may hold line breaks and the like; they would spoil the one line.
QString withoutControlCharacters(QString path)
{
    for (QChar &character : path)
        if (character.category() == QChar::Other_Control)
            character = QChar::ReplacementCharacter;
    return path;
}

QString withShortHome(const QString &path)
{
    const QString home = systemFacts::homeFolder();
    const bool isBelow = path == home || path.startsWith(home + u'/');
    return isBelow && home.size() > 1 ? u'~' + path.sliced(home.size()) : path;
}

} // namespace

PathControl::PathControl(QWidget *parent)
    : QFrame(parent), _icon(new QLabel(this)), _text(new QLabel(this))
{
    setFrameStyle(QFrame::NoFrame);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    _text->setTextFormat(Qt::PlainText);
    _text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, fontMetrics().height() / 4, 0, fontMetrics().height() / 4);
    row->setSpacing(fontMetrics().height() / 2);
    row->addWidget(_icon);
    row->addWidget(_text, 1);
}

void PathControl::setURL(const QUrl &url)
{
    _url = url;
    const QString whole = withoutControlCharacters(path());
    setToolTip(whole);
    setAccessibleDescription(whole);
    _text->setAccessibleName(whole);
    showShortened();
}

QString PathControl::path() const
{
    QString path = _url.toLocalFile();
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

void PathControl::setPlaceholderText(const QString &text)
{
    _placeholderText = text;
    showShortened();
}

QSize PathControl::minimumSizeHint() const
{
    constexpr int letters = 24;
    const QMargins margins = layout()->contentsMargins();
    return {fontMetrics().averageCharWidth() * letters,
            fontMetrics().lineSpacing() + margins.top() + margins.bottom()};
}

void PathControl::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    showShortened();
}

void PathControl::changeEvent(QEvent *event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        showShortened();
}

void PathControl::showShortened()
{
    showIcon();
    const bool isEmpty = _url.isEmpty();
    const QString text =
        isEmpty ? _placeholderText : withShortHome(withoutControlCharacters(path()));
    _text->setForegroundRole(isEmpty ? QPalette::PlaceholderText : QPalette::WindowText);
    _text->setText(fontMetrics().elidedText(text, Qt::ElideMiddle, _text->width()));
}

void PathControl::showIcon()
{
    const int side = fontMetrics().lineSpacing();
    const QSize size(side, side);
    _icon->setFixedSize(size);
    _icon->setVisible(!_url.isEmpty());
    _icon->setPixmap(icons::forFolder(path()).pixmap(size, devicePixelRatioF()));
}

} // namespace nimbrel
