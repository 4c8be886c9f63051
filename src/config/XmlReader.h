#pragma once

#include "config/NBPreferencesError.h"

#include <cstddef>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

class XmlReader;

// What one run of the reader reports. Called on the thread of the run.
struct XmlEvents
{
    // A piece of text, references resolved. CDATA sections aren't reported.
    std::function<void(XmlReader &parser, std::string_view text)> foundCharacters;
    // The end of an element, by its local name.
    std::function<void(XmlReader &parser, std::string_view elementName)> didEndElement;
};

// Reads one XML document from memory, once. Nothing outside the document is ever opened,
// declarations of entities and attributes are refused rather than expanded, and all that grows with
// the document has a bound. Nothing is printed.
class XmlReader final
{
public:
    static constexpr std::size_t maximumSize = std::size_t{1} << 20U; // bytes of a document
    // Bytes from one '<' to the next: a tag with what follows it. The parser's time grows with the
    // square of a tag's length.
    static constexpr std::size_t maximumPart = std::size_t{1} << 14U;
    static constexpr unsigned maximumDepth = 64; // elements inside each other

    explicit XmlReader(XmlEvents events);
    XmlReader(const XmlReader &) = delete;
    XmlReader &operator=(const XmlReader &) = delete;

    // Runs to the end of `text`. The error that ended the run: a bound (boundErrorDomain) or the
    // parser's own (xmlErrorDomain). Exceptions of the events come out of here.
    [[nodiscard]] std::optional<NBPreferencesError> parse(std::string_view text);

    // From inside an event: no further event comes.
    void abortParsing();
    // From inside an event: the document is over a bound.
    void refuse(std::string message);

private:
    struct Callbacks; // the parser's C functions

    void *_context = nullptr; // xmlParserCtxt of the run
    XmlEvents _events;
    unsigned _depth = 0;
    std::optional<NBPreferencesError> _error;
    std::exception_ptr _exception;
};

} // namespace nimbrel
