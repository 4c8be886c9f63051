// Extended attributes lie on the on-disk item in the clear, with their plain names.
#include "fs/NBNimbrelFS.h"

#include "crypto/Utf8.h"
#include "fs/OnDiskPath.h"

#include <algorithm>
#include <sys/xattr.h>

namespace nimbrel {

namespace {

constexpr std::string_view unreadableAttribute = "com.apple.quarantine";

// What `call` puts into a buffer, whose length it tells when it gets none. An attribute that grows
// between the two calls is asked for again.
template <class Call>
NBErrnoOr<Bytes> readWhole(const std::string &path, Call call)
{
    Bytes bytes;
    for (;;) {
        const NBDone done = callOnPath(path, [&](const char *item) {
            const ssize_t length = call(item, nullptr, 0);
            if (length <= 0) {
                bytes.clear();
                return length;
            }
            bytes.resize(static_cast<std::size_t>(length));
            const ssize_t got = call(item, bytes.data(), bytes.size());
            bytes.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
            return got;
        });
        if (done)
            return bytes;
        if (done.code() != ERANGE)
            return done.error();
    }
}

// In UTF-16 units: a character of four bytes counts as two.
std::size_t charactersOf(std::string_view text)
{
    std::size_t characters = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const bool continues = (byte & 0xC0U) == 0x80U;
        characters += continues ? 0 : 1;
        characters += byte >= 0xF0U ? 1 : 0;
    }
    return characters;
}

// Kept: the scan moves on by a name's characters, not its bytes, so that the names behind one that
// isn't ASCII begin at the wrong place, see QUIRKS. What isn't text there is no name.
std::vector<std::string> namesIn(std::string_view list)
{
    std::vector<std::string> names;
    while (!list.empty()) {
        const std::string_view name = list.substr(0, list.find('\0'));
        const bool isText = isUtf8(name);
        if (isText)
            names.emplace_back(name);
        list.remove_prefix(std::min(list.size(), (isText ? charactersOf(name) : 0) + 1));
    }
    return names;
}

} // namespace

NBErrnoOr<std::vector<std::string>>
NBNimbrelFS::extendedAttributesOfItemAtPath(const std::string &path)
{
    const NBErrnoOr<Bytes> list =
        readWhole(_securePathWithPath(path), [](const char *item, void *buffer, std::size_t size) {
            return ::llistxattr(item, static_cast<char *>(buffer), size);
        });
    if (!list)
        return list.error();
    return namesIn(textOf(*list));
}

NBErrnoOr<Bytes> NBNimbrelFS::valueOfExtendedAttribute(const std::string &name,
                                                       const std::string &path)
{
    if (name == unreadableAttribute)
        return NBErrno{ENOTSUP};
    return readWhole(_securePathWithPath(path),
                     [&](const char *item, void *buffer, std::size_t size) {
                         return ::lgetxattr(item, name.c_str(), buffer, size);
                     });
}

NBDone NBNimbrelFS::setExtendedAttribute(const std::string &name, const std::string &path,
                                         ByteView value, int options)
{
    return callOnPath(_securePathWithPath(path), [&](const char *item) {
        return ::lsetxattr(item, name.c_str(), value.data(), value.size(), options);
    });
}

NBDone NBNimbrelFS::removeExtendedAttribute(const std::string &name, const std::string &path)
{
    return callOnPath(_securePathWithPath(path),
                      [&](const char *item) { return ::lremovexattr(item, name.c_str()); });
}

} // namespace nimbrel
