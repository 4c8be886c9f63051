// One name and its stored form: a 16-bit code of the plain name, which is also the vector seed,
// then the enciphered name.
#include "crypto/Base64.h"
#include "crypto/NBCryptor.h"
#include "crypto/Utf8.h"

namespace nimbrel {

namespace {

constexpr std::size_t codeSize = 2;
constexpr unsigned byteBits = 8;
constexpr unsigned characterBits = 6;

} // namespace

std::optional<std::string> NBCryptor::encodeString(std::string_view string) const
{
    const ByteView plain = bytesOf(string);
    const std::optional<std::uint64_t> code = mac16(plain, _key);
    if (!code)
        return std::nullopt;
    Bytes stored;
    stored.reserve(codeSize + plain.size());
    stored.push_back(static_cast<std::uint8_t>(*code >> 8U));
    stored.push_back(static_cast<std::uint8_t>(*code));
    stored.insert(stored.end(), plain.begin(), plain.end());
    if (!cryptPiece(ByteSpan(stored).subspan(codeSize), *code, CryptMode::Encrypt))
        return std::nullopt;
    return base64EncodedASCIIString(changeBase2(stored, byteBits, characterBits, true));
}

std::optional<std::string> NBCryptor::decodeString(std::string_view string) const
{
    Bytes stored = changeBase2(dataWithBase64ASCIIString(string), characterBits, byteBits, false);
    if (stored.size() < codeSize)
        return std::nullopt;
    const std::uint64_t code = std::uint64_t{stored[0]} << 8U | stored[1];
    const ByteSpan name = ByteSpan(stored).subspan(codeSize);
    if (!cryptPiece(name, code, CryptMode::Decrypt) || mac16(name, _key) != code ||
        !isUtf8(textOf(name)))
        return std::nullopt;
    return std::string(textOf(name));
}

} // namespace nimbrel
