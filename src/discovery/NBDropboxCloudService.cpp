#include "discovery/NBDropboxCloudService.h"

#include "crypto/CHandle.h"
#include "discovery/ClientFile.h"
#include "discovery/HomePath.h"

#include <openssl/bio.h>
#include <openssl/evp.h>

namespace nimbrel {

namespace {

using BioChain = CHandle<BIO, BIO_free_all>;

// A base64 filter that reads `text`, which must outlive it. Null when OpenSSL has no memory.
BioChain decoderOf(const QByteArray &text)
{
    BioChain source(BIO_new_mem_buf(text.constData(), static_cast<int>(text.size())));
    BioChain filter(BIO_new(BIO_f_base64()));
    if (!source || !filter)
        return nullptr;
    BIO_set_flags(filter.get(), BIO_FLAGS_BASE64_NO_NL);
    BIO_push(filter.get(), source.release());
    return filter;
}

// What fgets(3) would give next with a buffer of 512 bytes; `text` goes on behind it.
std::string_view nextLine(std::string_view &text)
{
    constexpr std::size_t longest = 511;
    const std::size_t lineFeed = text.substr(0, longest).find('\n');
    const std::size_t length = lineFeed == std::string_view::npos ? longest : lineFeed + 1;
    const std::string_view line = text.substr(0, length);
    text.remove_prefix(line.size());
    return line.substr(0, line.find('\0'));
}

} // namespace

NBDropboxCloudService::NBDropboxCloudService() : NBCloudService(QStringLiteral("Dropbox")) {}

bool NBDropboxCloudService::isAvailable()
{
    const auto file = clientFile(inHomeFolder(QLatin1String(".dropbox/host.db")));
    if (!file)
        return false;
    std::string_view text = *file;
    static_cast<void>(nextLine(text)); // not the path
    const std::string_view line = nextLine(text);
    return finish(
        stringWithBase64String(QByteArray(line.data(), static_cast<qsizetype>(line.size()))));
}

QString NBDropboxCloudService::stringWithBase64String(const QByteArray &string)
{
    if (string.isEmpty())
        return {};
    const BioChain decoder = decoderOf(string);
    std::string decoded(static_cast<std::size_t>(string.size()), '\0');
    if (decoder)
        BIO_read(decoder.get(), decoded.data(), static_cast<int>(decoded.size()));
    return asciiText(decoded);
}

} // namespace nimbrel
