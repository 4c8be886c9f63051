#include "crypto/Base64.h"

#include "crypto/CHandle.h"
#include "crypto/FileNameAlphabet.h"

#include <algorithm>
#include <array>
#include <limits>

#include <openssl/bio.h>
#include <openssl/evp.h>

namespace nimbrel {

namespace {

using BioChain = CHandle<BIO, BIO_free_all>;

// Configuration files have the text on a line of its own.
std::string_view withoutBlankEnds(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// A base64 filter that reads `text`, which must outlive it.
BioChain decoderOf(std::string_view text)
{
    BioChain source(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
    BioChain filter(BIO_new(BIO_f_base64()));
    if (!source || !filter)
        return nullptr;
    BIO_set_flags(filter.get(), BIO_FLAGS_BASE64_NO_NL);
    BIO_push(filter.get(), source.release());
    return filter;
}

} // namespace

Bytes dataWithBase64String(std::string_view text)
{
    text = withoutBlankEnds(text);
    Bytes decoded;
    if (text.empty() || text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()) ||
        !isAscii(text))
        return decoded;
    const BioChain decoder = decoderOf(text);
    if (!decoder)
        return decoded;
    std::array<std::uint8_t, 1024> piece{};
    for (;;) {
        const int got = BIO_read(decoder.get(), piece.data(), static_cast<int>(piece.size()));
        if (got <= 0)
            return decoded;
        decoded.insert(decoded.end(), piece.begin(), piece.begin() + got);
    }
}

std::string base64EncodedString(ByteView bytes)
{
    constexpr std::size_t piece = 3U << 20U; // whole groups of three, so that pieces join
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0'); // the encoder writes a zero behind
    std::size_t written = 0;
    while (!bytes.empty()) {
        const ByteView part = bytes.first(std::min(piece, bytes.size()));
        const int count = EVP_EncodeBlock(reinterpret_cast<unsigned char *>(text.data() + written),
                                          part.data(), static_cast<int>(part.size()));
        written += static_cast<std::size_t>(count);
        bytes = bytes.subspan(part.size());
    }
    text.resize(written);
    return text;
}

Bytes dataWithBase64ASCIIString(std::string_view text)
{
    Bytes values(text.size());
    std::transform(text.begin(), text.end(), values.begin(), fileNameValue);
    return values;
}

std::string base64EncodedASCIIString(ByteView values)
{
    std::string text(values.size(), '\0');
    std::transform(values.begin(), values.end(), text.begin(),
                   [](std::uint8_t value) { return fileNameAlphabet[value & 63U]; });
    return text;
}

Bytes changeBase2(ByteView source, unsigned src2Pow, unsigned dst2Pow, bool outputPartialLastByte)
{
    Bytes regrouped;
    regrouped.reserve((source.size() * src2Pow + dst2Pow - 1) / dst2Pow);
    const std::uint64_t mask = (std::uint64_t{1} << dst2Pow) - 1;
    std::uint64_t bits = 0;
    unsigned count = 0;
    for (const std::uint8_t byte : source) {
        bits |= std::uint64_t{byte} << count;
        count += src2Pow;
        while (count >= dst2Pow) {
            regrouped.push_back(static_cast<std::uint8_t>(bits & mask));
            bits >>= dst2Pow;
            count -= dst2Pow;
        }
    }
    if (count > 0 && outputPartialLastByte)
        regrouped.push_back(static_cast<std::uint8_t>(bits & mask));
    return regrouped;
}

} // namespace nimbrel
