// What one configuration file said, by the names of the filesystem's fields.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace nimbrel {

namespace preferenceKey {
inline constexpr std::string_view cipherAlgorithm = "_cipherAlgorithm";
inline constexpr std::string_view cipherAlgorithmMajor = "_cipherAlgorithmMajor";
inline constexpr std::string_view cipherAlgorithmMinor = "_cipherAlgorithmMinor";
inline constexpr std::string_view nameAlgorithm = "_nameAlgorithm";
inline constexpr std::string_view areFilenamesEncrypted = "_areFilenamesEncrypted";
inline constexpr std::string_view nameAlgorithmMajor = "_nameAlgorithmMajor";
inline constexpr std::string_view nameAlgorithmMinor = "_nameAlgorithmMinor";
inline constexpr std::string_view keySize = "_keySize";
inline constexpr std::string_view blockSize = "_blockSize";
inline constexpr std::string_view uniqueIV = "_uniqueIV";
inline constexpr std::string_view chainedNameIV = "_chainedNameIV";
inline constexpr std::string_view externalIVChaining = "_externalIVChaining";
inline constexpr std::string_view blockMACBytes = "_blockMACBytes";
inline constexpr std::string_view blockMACRandomBytes = "_blockMACRandomBytes";
inline constexpr std::string_view allowHoles = "_allowHoles";
inline constexpr std::string_view encodedKeyLength = "_encodedKeyLength";
inline constexpr std::string_view encodedKey = "_encodedKey";
inline constexpr std::string_view saltLength = "_saltLength";
inline constexpr std::string_view salt = "_salt";
inline constexpr std::string_view kdfIterations = "_KDFIterations";
inline constexpr std::string_view desiredKDFDuration = "_desiredKDFDuration";
} // namespace preferenceKey

// A key that is absent leaves the filesystem's default standing.
class NBPreferencesDictionary final
{
public:
    using Value = std::variant<std::string, std::int64_t, bool>;

    void set(std::string_view key, Value value)
    {
        _values.insert_or_assign(std::string(key), std::move(value));
    }

    // Nothing when the key is absent or holds another type.
    template <class T>
    [[nodiscard]] std::optional<T> get(std::string_view key) const
    {
        const auto found = _values.find(key);
        if (found == _values.end() || !std::holds_alternative<T>(found->second))
            return std::nullopt;
        return std::get<T>(found->second);
    }
    [[nodiscard]] std::optional<std::string> text(std::string_view key) const
    {
        return get<std::string>(key);
    }
    [[nodiscard]] std::optional<std::int64_t> integer(std::string_view key) const
    {
        return get<std::int64_t>(key);
    }
    [[nodiscard]] std::optional<bool> boolean(std::string_view key) const { return get<bool>(key); }
    [[nodiscard]] bool has(std::string_view key) const
    {
        return _values.find(key) != _values.end();
    }
    [[nodiscard]] bool empty() const noexcept { return _values.empty(); }
    [[nodiscard]] std::size_t size() const noexcept { return _values.size(); }

    bool operator==(const NBPreferencesDictionary &) const = default;

private:
    std::map<std::string, Value, std::less<>> _values;
};

} // namespace nimbrel
