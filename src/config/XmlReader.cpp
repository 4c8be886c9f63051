#include "config/XmlReader.h"

#include "config/ValueText.h"
#include "crypto/CHandle.h"

#include <algorithm>
#include <fmt/format.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <new>
#include <utility>

namespace nimbrel {

namespace {

using ParserContext = CHandle<xmlParserCtxt, xmlFreeParserCtxt>;
using Document = CHandle<xmlDoc, xmlFreeDoc>;

std::string_view viewOf(const xmlChar *text, std::size_t length)
{
    return {reinterpret_cast<const char *>(text), length};
}

std::string_view viewOf(const xmlChar *text)
{
    return reinterpret_cast<const char *>(text);
}

NBPreferencesError boundError(std::string message)
{
    return {std::string(boundErrorDomain), -1, std::move(message)};
}

std::optional<NBPreferencesError> judgeSize(std::string_view text)
{
    if (text.size() > XmlReader::maximumSize)
        return boundError(fmt::format("The file is larger than {} bytes.", XmlReader::maximumSize));
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t next = std::min(text.find('<', start + 1), text.size());
        if (next - start > XmlReader::maximumPart)
            return boundError(
                fmt::format("A part of the file is longer than {} bytes.", XmlReader::maximumPart));
        start = next;
    }
    return std::nullopt;
}

// The parser's first call must not race with another one.
void initializeParser()
{
    static const bool isInitialized = (xmlInitParser(), true);
    static_cast<void>(isInitialized);
}

// What the parser can't attach to a document it hands to the thread's own handler, which prints.
// Silent while one of these lives.
class SilentParser final
{
public:
    SilentParser() : _handler(xmlStructuredError), _data(xmlStructuredErrorContext)
    {
        xmlSetStructuredErrorFunc(nullptr, ignore);
    }
    ~SilentParser() { xmlSetStructuredErrorFunc(_data, _handler); }
    SilentParser(const SilentParser &) = delete;
    SilentParser &operator=(const SilentParser &) = delete;

private:
    static void ignore(void * /*data*/, xmlErrorPtr /*error*/) {}

    xmlStructuredErrorFunc _handler;
    void *_data;
};

} // namespace

struct XmlReader::Callbacks
{
    static xmlParserCtxtPtr contextOf(const XmlReader &reader)
    {
        return static_cast<xmlParserCtxtPtr>(reader._context);
    }

    // No exception may cross the parser's C code: it is kept, and thrown again behind it.
    template <class Event>
    static void handle(void *data, Event event) noexcept
    {
        auto &reader = *static_cast<XmlReader *>(data);
        try {
            event(reader);
        } catch (...) {
            reader._exception = std::current_exception();
            reader.abortParsing();
        }
    }

    static void startElement(void *data, const xmlChar * /*localName*/, const xmlChar * /*prefix*/,
                             const xmlChar * /*uri*/, int /*namespaceCount*/,
                             const xmlChar ** /*namespaces*/, int /*attributeCount*/,
                             int /*defaultedCount*/, const xmlChar ** /*attributes*/)
    {
        handle(data, [](XmlReader &reader) {
            if (++reader._depth > maximumDepth)
                reader.refuse(fmt::format("Elements are nested more than {} deep.", maximumDepth));
        });
    }

    static void endElement(void *data, const xmlChar *localName, const xmlChar * /*prefix*/,
                           const xmlChar * /*uri*/)
    {
        handle(data, [&](XmlReader &reader) {
            --reader._depth;
            reader._events.didEndElement(reader, viewOf(localName));
        });
    }

    static void characters(void *data, const xmlChar *text, int length)
    {
        handle(data, [&](XmlReader &reader) {
            reader._events.foundCharacters(reader, viewOf(text, static_cast<std::size_t>(length)));
        });
    }

    // Without a function of its own a section would come as characters.
    static void cdataBlock(void * /*data*/, const xmlChar * /*text*/, int /*length*/) {}

    // What a declaration adds to each of its uses would multiply.
    static void refuseDeclaration(void *data, const char *kind)
    {
        handle(data, [&](XmlReader &reader) {
            reader.refuse(fmt::format("Declarations of {} are not supported.", kind));
        });
    }

    static void entityDecl(void *data, const xmlChar * /*name*/, int /*type*/,
                           const xmlChar * /*publicId*/, const xmlChar * /*systemId*/,
                           xmlChar * /*content*/)
    {
        refuseDeclaration(data, "entities");
    }

    static void unparsedEntityDecl(void *data, const xmlChar * /*name*/,
                                   const xmlChar * /*publicId*/, const xmlChar * /*systemId*/,
                                   const xmlChar * /*notationName*/)
    {
        refuseDeclaration(data, "entities");
    }

    static void attributeDecl(void *data, const xmlChar * /*element*/, const xmlChar * /*name*/,
                              int /*type*/, int /*use*/, const xmlChar * /*value*/,
                              xmlEnumerationPtr values)
    {
        xmlFreeEnumeration(values); // the callee's
        refuseDeclaration(data, "attributes");
    }

    // The first error that ends the run is the one that tells; what follows from it is noise.
    static void error(void *data, xmlErrorPtr error)
    {
        handle(data, [&](XmlReader &reader) {
            if (reader._error || error == nullptr || error->level != XML_ERR_FATAL)
                return;
            const std::string_view message = error->message == nullptr ? "" : error->message;
            reader._error = NBPreferencesError{std::string(xmlErrorDomain), error->code,
                                               std::string(trimmedText(message))};
        });
    }

    static xmlSAXHandler handler()
    {
        xmlSAXHandler handler{};
        handler.initialized = XML_SAX2_MAGIC;
        handler.startElementNs = startElement;
        handler.endElementNs = endElement;
        handler.characters = characters;
        handler.ignorableWhitespace = characters;
        handler.cdataBlock = cdataBlock;
        handler.entityDecl = entityDecl;
        handler.attributeDecl = attributeDecl;
        handler.unparsedEntityDecl = unparsedEntityDecl;
        handler.serror = error;
        return handler;
    }
};

XmlReader::XmlReader(XmlEvents events) : _events(std::move(events)) {}

std::optional<NBPreferencesError> XmlReader::parse(std::string_view text)
{
    if (auto error = judgeSize(text))
        return error;
    initializeParser();
    const SilentParser silence;
    const ParserContext context(xmlNewParserCtxt());
    if (context == nullptr)
        throw std::bad_alloc();
    *context->sax = Callbacks::handler();
    context->userData = this;
    _context = context.get();
    // A declaration of an entity makes the parser keep a document, even though none is asked for.
    const Document document(xmlCtxtReadMemory(context.get(), text.empty() ? "" : text.data(),
                                              static_cast<int>(text.size()), nullptr, nullptr,
                                              XML_PARSE_NONET));
    _context = nullptr;
    if (_exception != nullptr)
        std::rethrow_exception(_exception);
    return _error;
}

void XmlReader::abortParsing()
{
    if (_context != nullptr)
        xmlStopParser(static_cast<xmlParserCtxtPtr>(_context));
}

void XmlReader::refuse(std::string message)
{
    if (!_error)
        _error = boundError(std::move(message));
    abortParsing();
}

} // namespace nimbrel
