// The platform-independent side of the keyed archive: a binary property list with `$archiver`,
// `$version`, `$objects` and `$top`, whose root object is a list of records.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>
#include <utility>
#include <variant>

namespace nimbrel {

// One archived object: the name of its class, and values under keys in their order of writing.
class KeyedRecord final
{
public:
    // A missing object is std::monostate.
    using Value = std::variant<std::monostate, bool, qint64, QString>;

    explicit KeyedRecord(QString className) : _className(std::move(className)) {}
    [[nodiscard]] const QString &className() const noexcept { return _className; }
    [[nodiscard]] const QList<std::pair<QString, Value>> &values() const noexcept
    {
        return _values;
    }

    // encodeInteger:forKey:, encodeBool:forKey:, encodeObject:forKey:
    // A key that is encoded twice keeps its place and takes the newer value.
    void encodeInteger(const QString &key, qint64 value);
    void encodeBool(const QString &key, bool value);
    void encodeObject(const QString &key, const std::optional<QString> &value);

    // decodeIntegerForKey:, decodeBoolForKey:, decodeObjectForKey:
    // 0, false and nothing for an absent key and for a value of another kind; but a boolean reads
    // as an integer and an integer as a boolean.
    [[nodiscard]] qint64 decodeInteger(const QString &key) const;
    [[nodiscard]] bool decodeBool(const QString &key) const;
    [[nodiscard]] std::optional<QString> decodeObject(const QString &key) const;

private:
    [[nodiscard]] const Value *find(const QString &key) const;
    void encode(const QString &key, Value value);

    QString _className;
    QList<std::pair<QString, Value>> _values;
};

// archivedDataWithRootObject:
// A text ends at its first zero character. A key "$class" is the archive's own.
[[nodiscard]] QByteArray archivedData(const QList<KeyedRecord> &records);

// Why an archive is refused, in words for the user.
struct KeyedArchiveError
{
    QString message;
};

// unarchiveObjectWithData:
// The records of an archive in their order, of whatever class. Data that is no such archive, is
// damaged, or is built to exhaust memory or stack is an error; nothing is ever half read. An
// archived nothing is an empty list. At most 10,000 records, 16 MiB of data.
[[nodiscard]] std::variant<QList<KeyedRecord>, KeyedArchiveError>
unarchivedRecords(const QByteArray &data);

} // namespace nimbrel
