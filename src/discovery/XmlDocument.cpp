#include "discovery/XmlDocument.h"

#include "config/XmlReader.h"

#include <libxml/parser.h>

namespace nimbrel {

namespace {

struct XmlFree
{
    void operator()(xmlChar *text) const noexcept { xmlFree(text); }
};
using XmlText = std::unique_ptr<xmlChar, XmlFree>;

std::string_view viewOf(const xmlChar *text)
{
    return text == nullptr ? std::string_view() : reinterpret_cast<const char *>(text);
}

bool isSound(std::string_view text)
{
    XmlReader reader({.foundCharacters = [](XmlReader &, std::string_view) {},
                      .didEndElement = [](XmlReader &, std::string_view) {}});
    return !reader.parse(text);
}

const xmlNode *elementFrom(const xmlNode *node)
{
    while (node != nullptr && node->type != XML_ELEMENT_NODE)
        node = node->next;
    return node;
}

} // namespace

XmlDocument xmlDocument(std::string_view text)
{
    if (!isSound(text))
        return nullptr;
    return XmlDocument(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                                     XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
}

const xmlNode *rootElement(const XmlDocument &document, std::string_view name)
{
    const xmlNode *const root =
        document == nullptr ? nullptr : xmlDocGetRootElement(document.get());
    return root != nullptr && isElement(root, name) ? root : nullptr;
}

const xmlNode *firstElement(const xmlNode *parent)
{
    return elementFrom(parent->children);
}

const xmlNode *nextElement(const xmlNode *element)
{
    return elementFrom(element->next);
}

bool isElement(const xmlNode *node, std::string_view name)
{
    return node->type == XML_ELEMENT_NODE && viewOf(node->name) == name;
}

std::string contentOf(const xmlNode *element)
{
    const XmlText text(xmlNodeGetContent(element));
    return std::string(viewOf(text.get()));
}

std::optional<std::string> attributeOf(const xmlNode *element, const char *name)
{
    const XmlText text(xmlGetNoNsProp(element, reinterpret_cast<const xmlChar *>(name)));
    if (text == nullptr)
        return std::nullopt;
    return std::string(viewOf(text.get()));
}

} // namespace nimbrel
