#include "discovery/ClientFile.h"

#include "config/BoundedFile.h"

#include <QFile>

#include <algorithm>
#include <sys/stat.h>

namespace nimbrel {

namespace {

constexpr std::size_t maximumSize = std::size_t{16} << 20U;

std::string_view upToZero(std::string_view bytes)
{
    return bytes.substr(0, bytes.find('\0'));
}

bool isAscii(std::string_view bytes)
{
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

} // namespace

std::optional<std::string> clientFile(const QString &path)
{
    auto read = readBoundedFile(QFile::encodeName(path).toStdString(), maximumSize);
    if (auto *bytes = std::get_if<std::string>(&read))
        return std::move(*bytes);
    return std::nullopt;
}

QString asciiText(std::string_view bytes)
{
    bytes = upToZero(bytes);
    if (!isAscii(bytes))
        return {};
    return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

QString utf8Text(std::string_view bytes)
{
    bytes = upToZero(bytes);
    const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return view.isValidUtf8() ? QString::fromUtf8(view) : QString();
}

bool somethingExists(const QString &path)
{
    struct stat attributes = {};
    return !path.contains(QChar(u'\0')) &&
           ::stat(QFile::encodeName(path).constData(), &attributes) == 0;
}

} // namespace nimbrel
