#include "assistants/widgets/Warning.h"

#include "app/Texts.h"
#include "assistant/Icons.h"
#include "assistants/widgets/Form.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>

namespace nimbrel {

namespace {

// Nobody who only listens would notice it otherwise.
void announce(QLabel &text)
{
    QAccessibleEvent alert(&text, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

} // namespace

Warning Warning::make(QWidget *parent)
{
    Warning warning;
    warning.image = form::named("warningImage", new QLabel(parent));
    warning.image->setAccessibleName(texts::tr("Warning"));
    warning.text = form::named("warningTextField", form::makeText(QString(), parent));
    warning.text->setAccessibleDescription(texts::tr("Warning"));
    warning.text->setMinimumHeight(warning.text->fontMetrics().lineSpacing());
    form::keepRoomWhenHidden(*warning.image);
    form::keepRoomWhenHidden(*warning.text);
    warning.row = new QHBoxLayout;
    warning.row->setSpacing(warning.text->fontMetrics().height() / 2);
    warning.row->addWidget(warning.image, 0, Qt::AlignTop);
    warning.row->addWidget(warning.text, 1);
    warning.setHidden(true);
    return warning;
}

void Warning::setHidden(bool hidden) const
{
    image->setHidden(hidden);
    text->setHidden(hidden);
    if (!hidden)
        announce(*text);
}

void Warning::useCautionImage() const
{
    const int side = text->fontMetrics().lineSpacing();
    const QIcon caution = icons::named(QStringLiteral("NSCaution"));
    image->setPixmap(caution.pixmap(QSize(side, side), image->devicePixelRatioF()));
}

} // namespace nimbrel
