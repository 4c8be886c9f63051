#include "fs/NBNimbrelFS.h"

namespace nimbrel {

namespace {

// The two parts with one separator between them; an empty or bare "/" part yields the other.
std::string appendPathComponent(std::string_view root, std::string_view path)
{
    while (!root.empty() && root.back() == '/')
        root.remove_suffix(1);
    while (!path.empty() && path.front() == '/')
        path.remove_prefix(1);
    while (!path.empty() && path.back() == '/')
        path.remove_suffix(1);
    std::string joined(root);
    if (!path.empty() || root.empty())
        joined.append("/").append(path);
    return joined;
}

// A name that can't be encoded stays plain, and nothing is said.
void appendEncoded(std::string &encoded, const NBCryptor &cryptor, std::string_view name)
{
    const std::size_t before = encoded.size();
    if (!cryptor.encodeName(name, encoded) || encoded.size() == before)
        encoded.append(name);
}

} // namespace

std::string NBNimbrelFS::_securePathWithPath(const std::string &path)
{
    if (std::optional<std::string> known = _pathCache.find(path))
        return *std::move(known);
    std::string onDiskPath = onDiskPathOf(path);
    if (!onDiskPath.empty())
        _pathCache.store(path, onDiskPath);
    return onDiskPath;
}

// Each name is encoded by itself, so that the folder's path serves all items in it.
std::string NBNimbrelFS::onDiskPathOf(const std::string &path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos || slash + 1 == path.size())
        return appendPathComponent(_rootPath, _encodePath(path));
    std::string onDiskPath = _securePathWithPath(slash == 0 ? "/" : path.substr(0, slash));
    if (onDiskPath.back() != '/')
        onDiskPath += '/';
    const std::string_view name = std::string_view(path).substr(slash + 1);
    if (_settings.areFilenamesEncrypted)
        appendEncoded(onDiskPath, _cryptor, name);
    else
        onDiskPath += name;
    return onDiskPath;
}

std::string NBNimbrelFS::_encodePath(const std::string &path) const
{
    if (!_settings.areFilenamesEncrypted || path == "/")
        return path;
    std::string encoded;
    encoded.reserve(path.size() * 2);
    std::string_view rest = path;
    if (!rest.empty() && rest.front() == '/')
        encoded = "/";
    while (!rest.empty()) {
        const std::string_view name = rest.substr(0, rest.find('/'));
        rest.remove_prefix(std::min(rest.size(), name.size() + 1));
        if (name.empty())
            continue;
        if (!encoded.empty() && encoded.back() != '/')
            encoded += '/';
        appendEncoded(encoded, _cryptor, name);
    }
    return encoded;
}

std::string NBNimbrelFS::_decodeFilename(const std::string &storedName) const
{
    if (!_settings.areFilenamesEncrypted || storedName == "/")
        return storedName;
    return _cryptor.decodeString(storedName).value_or(storedName);
}

} // namespace nimbrel
