#include "app/NumericComparison.h"

namespace nimbrel {

namespace {

// ASCII alone: versions are written so.
bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

// The digits at the front of `text`, which is then what is behind them, without leading zeros.
QStringView takeNumber(QStringView &text)
{
    qsizetype end = 0;
    while (end < text.size() && isDigit(text[end]))
        ++end;
    QStringView number = text.first(end);
    text = text.sliced(end);
    while (number.startsWith(u'0'))
        number = number.sliced(1);
    return number;
}

std::strong_ordering compareNumbers(QStringView one, QStringView other)
{
    if (one.size() != other.size())
        return one.size() <=> other.size(); // more digits, more value
    return one.compare(other) <=> 0;
}

QChar takeCharacter(QStringView &text)
{
    const QChar character = text.front();
    text = text.sliced(1);
    return character;
}

std::strong_ordering compareFolded(QStringView one, QStringView other)
{
    while (!one.empty() && !other.empty()) {
        const auto order = isDigit(one.front()) && isDigit(other.front())
                               ? compareNumbers(takeNumber(one), takeNumber(other))
                               : takeCharacter(one).unicode() <=> takeCharacter(other).unicode();
        if (std::is_neq(order))
            return order;
    }
    return one.size() <=> other.size(); // one of them is at its end
}

} // namespace

std::strong_ordering compareNumerically(QStringView one, QStringView other)
{
    return compareFolded(one.toString().toCaseFolded(), other.toString().toCaseFolded());
}

} // namespace nimbrel
