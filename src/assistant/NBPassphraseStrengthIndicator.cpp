#include "assistant/NBPassphraseStrengthIndicator.h"

#include "app/Texts.h"

#include <QLabel>
#include <QPainter>

#include <array>

namespace nimbrel {

namespace {

constexpr int levels = 5;

enum class Kind
{
    Digit,
    Sign,
    Other
};

Kind kindOf(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Number_DecimalDigit:
        return Kind::Digit;
    case QChar::Punctuation_Connector:
    case QChar::Punctuation_Dash:
    case QChar::Punctuation_Open:
    case QChar::Punctuation_Close:
    case QChar::Punctuation_InitialQuote:
    case QChar::Punctuation_FinalQuote:
    case QChar::Punctuation_Other:
    case QChar::Symbol_Math:
    case QChar::Symbol_Currency:
    case QChar::Symbol_Modifier:
    case QChar::Symbol_Other:
        return Kind::Sign;
    default:
        return Kind::Other;
    }
}

// Which kinds of characters a text holds.
struct Kinds
{
    bool digits = false;
    bool others = false; // signs, too
    bool signs = false;
};

Kinds kindsIn(const QString &text)
{
    Kinds kinds;
    for (const char32_t character : text.toUcs4()) {
        const Kind kind = kindOf(character);
        kinds.digits |= kind == Kind::Digit;
        kinds.others |= kind != Kind::Digit;
        kinds.signs |= kind == Kind::Sign;
    }
    return kinds;
}

// UTF-16 units count.
unsigned pointsForLength(qsizetype length)
{
    constexpr qsizetype fair = 5;
    constexpr qsizetype good = 13;
    return length < fair ? 0 : length < good ? 1 : 2;
}

struct Rating
{
    const char *label; // a key of the string table
    QColor color;
    int level;
};

Rating ratingOf(unsigned score)
{
    const QColor red(255, 59, 48);
    const QColor yellow(213, 186, 54);
    const QColor green(92, 169, 34);
    const std::array<Rating, 6> ratings{{{QT_TRANSLATE_NOOP("nimbrel", "Very Weak"), red, 1},
                                         {QT_TRANSLATE_NOOP("nimbrel", "Very Weak"), red, 1},
                                         {QT_TRANSLATE_NOOP("nimbrel", "Weak"), yellow, 2},
                                         {QT_TRANSLATE_NOOP("nimbrel", "Good"), yellow, 3},
                                         {QT_TRANSLATE_NOOP("nimbrel", "Strong"), green, 4},
                                         {QT_TRANSLATE_NOOP("nimbrel", "Very Strong"), green, 5}}};
    return ratings.at(score);
}

void setColor(QLabel &label, const QColor &color)
{
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, color);
    label.setPalette(palette);
}

} // namespace

NBPassphraseStrengthIndicator::NBPassphraseStrengthIndicator(QWidget *parent) : QProgressBar(parent)
{
    setRange(0, levels);
    setValue(0);
    setTextVisible(false);
}

unsigned NBPassphraseStrengthIndicator::strengthWithPassphrase(const QString &passphrase)
{
    const Kinds kinds = kindsIn(passphrase);
    unsigned score = pointsForLength(passphrase.size());
    score += passphrase != passphrase.toUpper() && passphrase != passphrase.toLower() ? 1U : 0U;
    score += kinds.digits && kinds.others ? 1U : 0U;
    score += kinds.signs ? 1U : 0U;
    return score;
}

void NBPassphraseStrengthIndicator::setStrengthWithPassphrase(const QString &passphrase)
{
    const bool isEmpty = passphrase.isEmpty();
    const Rating rating = ratingOf(strengthWithPassphrase(passphrase));
    _levelColor = rating.color;
    setValue(isEmpty ? 0 : rating.level);
    update();
    if (_strengthLabel == nullptr)
        return;
    _strengthLabel->setText(isEmpty ? QString() : texts::tr(rating.label));
    setColor(*_strengthLabel, isEmpty ? palette().color(QPalette::WindowText) : rating.color);
}

QSize NBPassphraseStrengthIndicator::sizeHint() const
{
    constexpr int width = 120;
    return {width, fontMetrics().xHeight()};
}

// Pieces beside each other, those up to the level in its colour.
void NBPassphraseStrengthIndicator::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    constexpr double gap = 4;
    const double thickness = std::min<double>(height(), 6);
    const double length = (width() - gap * (levels - 1)) / levels;
    for (int piece = 0; piece < levels; ++piece) {
        painter.setBrush(piece < value() ? _levelColor : palette().color(QPalette::Midlight));
        painter.drawRoundedRect(
            QRectF(piece * (length + gap), (height() - thickness) / 2, length, thickness),
            thickness / 2, thickness / 2);
    }
}

} // namespace nimbrel
