// Reads the tree of a keyed archive; stays inside platform/.
#pragma once

#include "platform/KeyedArchive.h"
#include "platform/PropertyListNode.h"

#include <QHash>

#include <vector>

namespace nimbrel {

[[nodiscard]] bool isKind(plist_t node, plist_type kind);
// `node` is a string. The shape of the data has been checked: the text is whole, without zeros.
[[nodiscard]] QString textOfNode(plist_t node);

// The tree's shape has been judged: what is left are its meanings.
class ArchiveReader final
{
public:
    explicit ArchiveReader(plist_t top) : _top(top) {}

    // Nothing when the archive is refused; trouble() tells why.
    [[nodiscard]] std::optional<QList<KeyedRecord>> read();
    [[nodiscard]] const QString &trouble() const noexcept { return _trouble; }

private:
    std::nullopt_t refuse(const QString &why)
    {
        _trouble = why;
        return std::nullopt;
    }
    [[nodiscard]] bool isKeyedArchive();
    // The place that `node` names in `$objects`, where there is something.
    [[nodiscard]] std::optional<quint64> place(plist_t node);
    [[nodiscard]] std::optional<QString> className(plist_t object);
    [[nodiscard]] std::optional<QList<KeyedRecord>> list(plist_t root);
    [[nodiscard]] std::optional<KeyedRecord> record(plist_t reference);
    [[nodiscard]] std::optional<KeyedRecord> newRecord(plist_t object);
    [[nodiscard]] bool addValues(KeyedRecord &record, plist_t object);
    [[nodiscard]] bool addValue(KeyedRecord &record, const QString &key, plist_t node);
    [[nodiscard]] std::optional<KeyedRecord::Value> value(plist_t node);
    [[nodiscard]] std::optional<KeyedRecord::Value> text(quint64 place);
    [[nodiscard]] std::optional<QString> newText(plist_t object);

    plist_t _top;
    std::vector<plist_t> _objects;
    // What many places share is made once, whatever the archive says.
    QHash<quint64, QString> _texts;
    QHash<quint64, KeyedRecord> _records;
    QString _trouble;
};

} // namespace nimbrel
