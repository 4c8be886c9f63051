#include "platform/fileManagerActions/ThunarActions.h"

#include <libxml/parser.h>
#include <memory>

namespace nimbrel::fileManagerActions {

namespace {

constexpr char ownId[] = "com.nimbrel.Nimbrel-reveal-encrypted";
constexpr char emptyList[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<actions>\n</actions>\n";

struct XmlTextFree
{
    void operator()(xmlChar *text) const noexcept { xmlFree(text); }
};
using XmlText = std::unique_ptr<xmlChar, XmlTextFree>;
using Node = CHandle<xmlNode, xmlFreeNode>;

const xmlChar *xml(const char *text)
{
    return reinterpret_cast<const xmlChar *>(text);
}

bool isElement(const xmlNode *node, const char *name)
{
    return node != nullptr && node->type == XML_ELEMENT_NODE &&
           xmlStrEqual(node->name, xml(name)) == 1;
}

// What an entity stands for could multiply when a value is read. Thunar declares none.
bool declaresEntities(const xmlDoc &document)
{
    const xmlDtd *subset = document.intSubset;
    return subset != nullptr && (subset->entities != nullptr || subset->pentities != nullptr);
}

QByteArray childText(const xmlNode *action, const char *name)
{
    for (xmlNode *node = action->children; node != nullptr; node = node->next)
        if (isElement(node, name)) {
            const XmlText text(xmlNodeGetContent(node));
            return QByteArray(reinterpret_cast<const char *>(text.get())).trimmed();
        }
    return {};
}

// As Thunar writes it: each child on a line of its own.
bool add(xmlNode *action, const char *name, const QByteArray &text)
{
    xmlNode *const indent = xmlNewText(xml("\n\t"));
    if (indent == nullptr)
        return false;
    xmlAddChild(action, indent);
    const xmlChar *content = text.isEmpty() ? nullptr : xml(text.constData());
    return xmlNewTextChild(action, nullptr, xml(name), content) != nullptr;
}

Node newAction(const QByteArray &title, const QByteArray &command)
{
    Node action(xmlNewNode(nullptr, xml("action")));
    bool isMade = action != nullptr && add(action.get(), "icon", "com.nimbrel.Nimbrel") &&
                  add(action.get(), "name", title) && add(action.get(), "unique-id", ownId) &&
                  add(action.get(), "command", command) && add(action.get(), "description", {}) &&
                  add(action.get(), "patterns", "*");
    for (const char *kind :
         {"directories", "audio-files", "image-files", "other-files", "text-files", "video-files"})
        isMade = isMade && add(action.get(), kind, {});
    xmlNode *const end = isMade ? xmlNewText(xml("\n")) : nullptr;
    if (end == nullptr)
        return {};
    xmlAddChild(action.get(), end);
    return action;
}

void removeNode(xmlNode *node)
{
    xmlUnlinkNode(node);
    xmlFreeNode(node);
}

// With the end of its line.
void removeAction(xmlNode *action)
{
    xmlNode *const next = action->next;
    if (next != nullptr && xmlIsBlankNode(next) == 1)
        removeNode(next);
    removeNode(action);
}

} // namespace

std::optional<ThunarActions> ThunarActions::read(const QByteArray &text)
{
    const QByteArray list = text.isEmpty() ? QByteArray(emptyList) : text;
    constexpr int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    Document document(
        xmlReadMemory(list.constData(), static_cast<int>(list.size()), nullptr, nullptr, options));
    if (document == nullptr || !isElement(xmlDocGetRootElement(document.get()), "actions") ||
        declaresEntities(*document))
        return std::nullopt;
    return ThunarActions(std::move(document));
}

std::vector<xmlNode *> ThunarActions::ours() const
{
    std::vector<xmlNode *> found;
    const xmlNode *root = xmlDocGetRootElement(_document.get());
    for (xmlNode *node = root->children; node != nullptr; node = node->next)
        if (isElement(node, "action") && childText(node, "unique-id") == ownId)
            found.push_back(node);
    return found;
}

std::optional<QByteArray> ThunarActions::command() const
{
    const auto own = ours();
    return own.empty() ? std::nullopt : std::optional(childText(own.front(), "command"));
}

bool ThunarActions::set(const QByteArray &title, const QByteArray &command)
{
    Node action = newAction(title, command);
    xmlNode *const lineEnd = action == nullptr ? nullptr : xmlNewText(xml("\n"));
    if (lineEnd == nullptr)
        return false;
    const auto old = ours();
    xmlNode *const root = xmlDocGetRootElement(_document.get());
    if (old.empty()) {
        xmlAddChild(root, action.release());
        xmlAddChild(root, lineEnd);
        return true;
    }
    xmlFreeNode(lineEnd);
    xmlFreeNode(xmlReplaceNode(old.front(), action.release()));
    for (std::size_t at = 1; at < old.size(); ++at)
        removeAction(old[at]);
    return true;
}

bool ThunarActions::remove()
{
    const auto own = ours();
    for (xmlNode *action : own)
        removeAction(action);
    return !own.empty();
}

QByteArray ThunarActions::text() const
{
    const char *encoding = reinterpret_cast<const char *>(_document->encoding);
    xmlChar *text = nullptr;
    int size = 0;
    xmlDocDumpMemoryEnc(_document.get(), &text, &size, encoding == nullptr ? "UTF-8" : encoding);
    const XmlText owned(text);
    return text == nullptr ? QByteArray() : QByteArray(reinterpret_cast<const char *>(text), size);
}

} // namespace nimbrel::fileManagerActions
