#include "platform/PlacesList.h"

#include "crypto/CHandle.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

namespace nimbrel {

namespace {

using Document = CHandle<xmlDoc, xmlFreeDoc>;

struct XmlTextFree
{
    void operator()(xmlChar *text) const noexcept { xmlFree(text); }
};
using XmlText = std::unique_ptr<xmlChar, XmlTextFree>;

const xmlChar *xml(const char *text)
{
    return reinterpret_cast<const xmlChar *>(text);
}

bool isElement(const xmlNode *node, const char *name)
{
    return node != nullptr && node->type == XML_ELEMENT_NODE &&
           xmlStrEqual(node->name, xml(name)) == 1;
}

// Nothing outside the text is opened, and references to entities stay references.
Document parsed(std::string_view text)
{
    constexpr int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    return Document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, options));
}

// What an entity stands for could multiply when a value is read. No file browser declares one.
bool declaresEntities(const xmlDoc &document)
{
    const xmlDtd *subset = document.intSubset;
    return subset != nullptr && (subset->entities != nullptr || subset->pentities != nullptr);
}

bool isPlace(xmlNode *node, const std::string &path)
{
    if (!isElement(node, "bookmark"))
        return false;
    const XmlText address(xmlGetNoNsProp(node, xml("href")));
    return address != nullptr && isFileUriOf(reinterpret_cast<const char *>(address.get()), path);
}

// Bookmarks may lie in folders, as deep as the parser lets elements be nested.
bool containsPlace(xmlNode *parent, const std::string &path) // NOLINT(misc-no-recursion)
{
    for (xmlNode *node = parent->children; node != nullptr; node = node->next)
        if (node->type == XML_ELEMENT_NODE && (isPlace(node, path) || containsPlace(node, path)))
            return true;
    return false;
}

// False without memory.
bool addPlace(xmlNode *root, const Place &place)
{
    xmlNode *blank = xmlNewText(xml(" "));
    xmlNode *bookmark = xmlNewNode(nullptr, xml("bookmark"));
    xmlNode *lineEnd = xmlNewText(xml("\n"));
    if (blank == nullptr || bookmark == nullptr || lineEnd == nullptr)
        return false;
    xmlAddChild(root, blank); // may become part of the text before it
    xmlAddChild(root, bookmark);
    xmlAddChild(root, lineEnd);
    return xmlNewProp(bookmark, xml("href"), xml(fileUri(place.path).c_str())) != nullptr &&
           xmlNewTextChild(bookmark, nullptr, xml("title"), xml(place.label.c_str())) != nullptr;
}

std::optional<std::string> textOf(xmlDoc &document)
{
    const char *encoding = reinterpret_cast<const char *>(document.encoding);
    xmlChar *text = nullptr;
    int size = 0;
    xmlDocDumpMemoryEnc(&document, &text, &size, encoding == nullptr ? "UTF-8" : encoding);
    const XmlText owned(text);
    if (text == nullptr || size <= 0)
        return std::nullopt;
    return std::string(reinterpret_cast<const char *>(text), static_cast<std::size_t>(size));
}

} // namespace

std::optional<std::string> withPlaceInXbel(std::string_view text, const Place &place)
{
    const Document document = parsed(text);
    xmlNode *root = document == nullptr ? nullptr : xmlDocGetRootElement(document.get());
    if (!isElement(root, "xbel") || declaresEntities(*document))
        return std::nullopt;
    if (containsPlace(root, place.path))
        return std::string(text);
    return addPlace(root, place) ? textOf(*document) : std::nullopt;
}

} // namespace nimbrel
