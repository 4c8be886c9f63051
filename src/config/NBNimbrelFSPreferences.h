// Reads a folder's configuration file and makes its text.
#pragma once

#include "config/NBNimbrelFSSettings.h"
#include "config/NBPreferencesDictionary.h"
#include "config/NBPreferencesError.h"

#include <optional>
#include <string>
#include <string_view>

namespace nimbrel {

class XmlReader; // the event-driven reader; stays inside config/

// One instance serves one read, on the calling thread, to completion. A file is judged before any
// key is touched: what this refuses, no passphrase can open.
class NBNimbrelFSPreferences final
{
public:
    // preferencesWithURL:error:
    // The dictionary of the file at `path`. Nothing, with `*error` set, when the file is refused,
    // isn't XML, can't be read or is over a bound of the reader. Without a place for an error the
    // dictionary holds what was stored up to the stop, and nothing tells of it (kept, see QUIRKS).
    [[nodiscard]] std::optional<NBPreferencesDictionary>
    preferencesWithURL(const std::string &path, NBPreferencesError *error);

    // The same for the text of a file, for those who have it in memory.
    [[nodiscard]] std::optional<NBPreferencesDictionary>
    preferencesWithText(std::string_view text, NBPreferencesError *error);

    // preferenceXMLWithNMFS:
    // The text of a configuration file: the template, filled with the eight values that vary.
    // Iterations (5000), blob length (52) and salt length (20) are the template's own, whatever
    // `settings` says (kept, see QUIRKS; ConfigurationWriter guards against the loss).
    [[nodiscard]] static std::optional<std::string>
    preferenceXMLWithNMFS(const NBNimbrelFSSettings &settings);

private:
    void begin();
    [[nodiscard]] std::optional<NBPreferencesError> read(std::string_view text);
    [[nodiscard]] std::optional<NBPreferencesDictionary>
    finish(std::optional<NBPreferencesError> readerError, NBPreferencesError *error);

    void foundCharacters(XmlReader &parser, std::string_view characters);
    void didEndElement(XmlReader &parser, std::string_view elementName);
    // setErrorWithDescription:forParser:
    void setErrorWithDescription(const std::string &description, XmlReader &parser);

    NBPreferencesDictionary _parsedData;
    std::string _currentElementValue;
    // Kept over reads: an instance that has refused once gives that error for good.
    std::optional<NBPreferencesError> _parseError;
};

} // namespace nimbrel
