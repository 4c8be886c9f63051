#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <optional>

namespace nimbrel {

// The group "Desktop Entry" of a file of that kind (freedesktop Desktop Entry Specification 1.5).
// What isn't set stays byte for byte: comments, other keys, other groups.
class DesktopEntry final
{
public:
    explicit DesktopEntry(const QByteArray &text = {});

    // As it stands in the file, without the blanks around it; of more than one, the last. Nothing
    // when the key isn't there.
    [[nodiscard]] std::optional<QByteArray> value(const QByteArray &key) const;
    // Makes the key, and the group, where it is missing. The value has one line.
    void setValue(const QByteArray &key, const QByteArray &value);

    [[nodiscard]] QByteArray text() const { return _lines.join('\n'); }

private:
    // The lines behind the group's own up to the next group's.
    struct Range
    {
        qsizetype first;
        qsizetype end;
    };
    [[nodiscard]] std::optional<Range> group() const;
    [[nodiscard]] Range madeGroup();

    QByteArrayList _lines;
};

// The value of the key Exec that starts the program at `path` with `argument`: quoted, escaped,
// percent signs doubled. `argument` needs no quoting.
[[nodiscard]] QByteArray execValue(const QByteArray &path, const QByteArray &argument);
// The program of such a value, also of one that a person wrote; empty when it isn't well-formed.
[[nodiscard]] QByteArray programOfExec(const QByteArray &value);

} // namespace nimbrel
