#include "platform/KeyedArchive.h"

#include <algorithm>

namespace nimbrel {

void KeyedRecord::encodeInteger(const QString &key, qint64 value)
{
    encode(key, value);
}

void KeyedRecord::encodeBool(const QString &key, bool value)
{
    encode(key, value);
}

void KeyedRecord::encodeObject(const QString &key, const std::optional<QString> &value)
{
    encode(key, value ? Value(*value) : Value());
}

qint64 KeyedRecord::decodeInteger(const QString &key) const
{
    const Value *const value = find(key);
    if (value == nullptr)
        return 0;
    if (const auto *boolean = std::get_if<bool>(value))
        return *boolean ? 1 : 0;
    const auto *const integer = std::get_if<qint64>(value);
    return integer == nullptr ? 0 : *integer;
}

bool KeyedRecord::decodeBool(const QString &key) const
{
    return decodeInteger(key) != 0;
}

std::optional<QString> KeyedRecord::decodeObject(const QString &key) const
{
    const Value *const value = find(key);
    const auto *const text = value == nullptr ? nullptr : std::get_if<QString>(value);
    if (text == nullptr)
        return std::nullopt;
    return *text;
}

const KeyedRecord::Value *KeyedRecord::find(const QString &key) const
{
    const auto found = std::find_if(_values.cbegin(), _values.cend(),
                                    [&key](const auto &entry) { return entry.first == key; });
    return found == _values.cend() ? nullptr : &found->second;
}

void KeyedRecord::encode(const QString &key, Value value)
{
    const auto found = std::find_if(_values.begin(), _values.end(),
                                    [&key](const auto &entry) { return entry.first == key; });
    if (found == _values.end())
        _values.append({key, std::move(value)});
    else
        found->second = std::move(value);
}

} // namespace nimbrel
