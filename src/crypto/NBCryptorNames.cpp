// One name and its stored form: a 16-bit code of the plain name, which is also the vector seed,
// then the enciphered name.
#include "crypto/NBCryptor.h"
#include "crypto/StoredName.h"
#include "crypto/Utf8.h"

#include <algorithm>

namespace nimbrel {

namespace {

constexpr std::size_t codeSize = 2;

ByteSpan bytesIn(std::string &text) noexcept
{
    return {reinterpret_cast<std::uint8_t *>(text.data()), text.size()};
}

} // namespace

std::optional<std::string> NBCryptor::encodeString(std::string_view string) const
{
    std::string stored;
    if (!encodeName(string, stored))
        return std::nullopt;
    return stored;
}

std::optional<std::string> NBCryptor::decodeString(std::string_view string) const
{
    std::string plain;
    if (!decodeName(string, plain))
        return std::nullopt;
    return plain;
}

bool NBCryptor::encodeName(std::string_view plain, std::string &appendedTo) const
{
    const std::optional<std::uint64_t> code = mac16(bytesOf(plain), _key);
    if (!code)
        return false;
    const std::size_t before = appendedTo.size();
    appendedTo.resize(before + storedNameLength(codeSize + plain.size()));
    // The bytes are made at the text's end, and regrouping from there never overtakes them.
    const ByteSpan bytes = bytesIn(appendedTo).last(codeSize + plain.size());
    bytes[0] = static_cast<std::uint8_t>(*code >> 8U);
    bytes[1] = static_cast<std::uint8_t>(*code);
    const ByteSpan name = bytes.subspan(codeSize);
    std::copy(plain.begin(), plain.end(), name.begin());
    if (!cryptPiece(name, *code, CryptMode::Encrypt)) {
        appendedTo.resize(before);
        return false;
    }
    writeStoredName(bytes, appendedTo.data() + before);
    return true;
}

bool NBCryptor::decodeName(std::string_view stored, std::string &plain) const
{
    plain.resize(storedNameBytes(stored.size()));
    readStoredName(stored, bytesIn(plain));
    if (plain.size() < codeSize) {
        plain.clear();
        return false;
    }
    const std::uint64_t code = std::uint64_t{bytesIn(plain)[0]} << 8U | bytesIn(plain)[1];
    plain.erase(0, codeSize);
    const bool good = cryptPiece(bytesIn(plain), code, CryptMode::Decrypt) &&
                      mac16(bytesIn(plain), _key) == code && isUtf8(plain);
    if (!good)
        plain.clear();
    return good;
}

} // namespace nimbrel
