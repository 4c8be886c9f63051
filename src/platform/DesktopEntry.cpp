#include "platform/DesktopEntry.h"

namespace nimbrel {

namespace {

// The key of a line, without a locale in brackets taken off: "Name[de]" is another key than "Name".
QByteArray keyOf(const QByteArray &line)
{
    const qsizetype sign = line.indexOf('=');
    const bool isComment = line.trimmed().startsWith('#');
    return sign < 0 || isComment ? QByteArray() : line.first(sign).trimmed();
}

bool isGroup(const QByteArray &line)
{
    return line.trimmed().startsWith('[');
}

} // namespace

DesktopEntry::DesktopEntry(const QByteArray &text) : _lines(text.split('\n')) {}

std::optional<DesktopEntry::Range> DesktopEntry::group() const
{
    qsizetype first = 0;
    while (first < _lines.size() && _lines[first].trimmed() != "[Desktop Entry]")
        ++first;
    if (first == _lines.size())
        return std::nullopt;
    qsizetype end = ++first;
    while (end < _lines.size() && !isGroup(_lines[end]))
        ++end;
    return Range{first, end};
}

// No group but this one may be the first (comments may stand before it).
DesktopEntry::Range DesktopEntry::madeGroup()
{
    if (const auto found = group())
        return *found;
    qsizetype at = 0;
    while (at < _lines.size() && !isGroup(_lines[at]) && !_lines[at].trimmed().isEmpty())
        ++at;
    _lines.insert(at, QByteArrayLiteral("[Desktop Entry]"));
    return *group();
}

std::optional<QByteArray> DesktopEntry::value(const QByteArray &key) const
{
    std::optional<QByteArray> found;
    const auto range = group();
    for (qsizetype at = range ? range->first : 0; range && at < range->end; ++at)
        if (keyOf(_lines[at]) == key)
            found = _lines[at].sliced(_lines[at].indexOf('=') + 1).trimmed();
    return found;
}

void DesktopEntry::setValue(const QByteArray &key, const QByteArray &value)
{
    const Range range = madeGroup();
    const QByteArray line = key + '=' + value;
    bool isSet = false;
    qsizetype end = range.first; // behind the last line that isn't empty
    for (qsizetype at = range.first; at < range.end; ++at) {
        if (!_lines[at].trimmed().isEmpty())
            end = at + 1;
        if (keyOf(_lines[at]) != key)
            continue;
        _lines[at] = line;
        isSet = true;
    }
    if (isSet)
        return;
    _lines.insert(end, line);
    if (end + 1 == _lines.size())
        _lines += QByteArray(); // the last line has its end
}

} // namespace nimbrel
