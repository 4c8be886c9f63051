// XML files of others as trees.
#pragma once

#include "crypto/CHandle.h"

#include <libxml/tree.h>
#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

using XmlDocument = CHandle<xmlDoc, xmlFreeDoc>;

// Null when `text` isn't well-formed or is over a bound of XmlReader, which also refuses
// declarations of entities: the tree is never larger than the text. Nothing else is opened, and
// nothing printed.
[[nodiscard]] XmlDocument xmlDocument(std::string_view text);

// The root when it has that name; null otherwise, and for no document.
[[nodiscard]] const xmlNode *rootElement(const XmlDocument &document, std::string_view name);
// Null when there is none.
[[nodiscard]] const xmlNode *firstElement(const xmlNode *parent);
[[nodiscard]] const xmlNode *nextElement(const xmlNode *element);

[[nodiscard]] bool isElement(const xmlNode *node, std::string_view name);
// All text in the element.
[[nodiscard]] std::string contentOf(const xmlNode *element);
[[nodiscard]] std::optional<std::string> attributeOf(const xmlNode *element, const char *name);

} // namespace nimbrel
