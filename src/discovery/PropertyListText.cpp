#include "discovery/PropertyListText.h"

#include "discovery/XmlDocument.h"
#include "platform/PropertyListNode.h"
#include "platform/PropertyListShape.h"

namespace nimbrel {

namespace {

bool isKind(plist_t node, plist_type kind)
{
    return node != nullptr && plist_get_node_type(node) == kind;
}

QString textOfBinary(const QByteArray &file, const std::string &key)
{
    if (propertyListTrouble(file))
        return {};
    plist_t node = nullptr;
    plist_from_bin(file.constData(), static_cast<std::uint32_t>(file.size()), &node);
    const PropertyListNode root(node);
    if (!isKind(root.get(), PLIST_DICT))
        return {};
    plist_t value = plist_dict_get_item(root.get(), key.c_str());
    if (!isKind(value, PLIST_STRING))
        return {};
    std::uint64_t length = 0;
    const char *const text = plist_get_string_ptr(value, &length);
    return QString::fromUtf8(text, static_cast<qsizetype>(length));
}

// <plist><dict><key>K</key><string>V</string>...; as in every reader the last of equal keys counts.
QString textOfXml(const std::string &file, const std::string &key)
{
    const XmlDocument document = xmlDocument(file);
    const xmlNode *const root = rootElement(document, "plist");
    const xmlNode *const dictionary = root == nullptr ? nullptr : firstElement(root);
    if (dictionary == nullptr || !isElement(dictionary, "dict"))
        return {};
    QString text;
    for (const xmlNode *name = firstElement(dictionary); name != nullptr;) {
        const xmlNode *const value = nextElement(name);
        if (value == nullptr || !isElement(name, "key"))
            return {}; // no dictionary
        if (contentOf(name) == key)
            text =
                isElement(value, "string") ? QString::fromStdString(contentOf(value)) : QString();
        name = nextElement(value);
    }
    return text;
}

} // namespace

QString propertyListText(const std::string &file, const std::string &key)
{
    if (file.starts_with("bplist"))
        return textOfBinary(QByteArray::fromStdString(file), key);
    return textOfXml(file, key);
}

} // namespace nimbrel
