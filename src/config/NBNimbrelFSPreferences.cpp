#include "config/NBNimbrelFSPreferences.h"

#include "config/BoundedFile.h"
#include "config/ConfigurationTemplate.h"
#include "config/ConfigurationText.h"
#include "config/ServedElements.h"
#include "config/ValueText.h"
#include "config/XmlReader.h"

#include <array>
#include <cstddef>
#include <fmt/format.h>
#include <utility>
#include <variant>

namespace nimbrel {

namespace {

constexpr std::size_t maximumElementText = std::size_t{1} << 16U; // bytes

} // namespace

std::optional<NBPreferencesDictionary>
NBNimbrelFSPreferences::preferencesWithURL(const std::string &path, NBPreferencesError *error)
{
    begin();
    const auto file = readBoundedFile(path, XmlReader::maximumSize);
    if (const auto *text = std::get_if<std::string>(&file))
        return finish(read(*text), error);
    return finish(std::get<NBPreferencesError>(file), error);
}

std::optional<NBPreferencesDictionary>
NBNimbrelFSPreferences::preferencesWithText(std::string_view text, NBPreferencesError *error)
{
    begin();
    return finish(read(text), error);
}

void NBNimbrelFSPreferences::begin()
{
    _parsedData = {};
    _currentElementValue.clear();
}

std::optional<NBPreferencesError> NBNimbrelFSPreferences::read(std::string_view text)
{
    XmlReader parser({.foundCharacters =
                          [this](XmlReader &running, std::string_view characters) {
                              foundCharacters(running, characters);
                          },
                      .didEndElement =
                          [this](XmlReader &running, std::string_view elementName) {
                              didEndElement(running, elementName);
                          }});
    return parser.parse(text);
}

// A refusal hides the error that the reader ends with because it was stopped.
std::optional<NBPreferencesDictionary>
NBNimbrelFSPreferences::finish(std::optional<NBPreferencesError> readerError,
                               NBPreferencesError *error)
{
    if (error == nullptr)
        return _parsedData;
    if (!_parseError)
        _parseError = std::move(readerError);
    if (!_parseError)
        return _parsedData;
    *error = *_parseError;
    return std::nullopt;
}

void NBNimbrelFSPreferences::foundCharacters(XmlReader &parser, std::string_view characters)
{
    _currentElementValue += characters;
    if (_currentElementValue.size() > maximumElementText)
        parser.refuse(
            fmt::format("An element's text is longer than {} bytes.", maximumElementText));
}

void NBNimbrelFSPreferences::didEndElement(XmlReader &parser, std::string_view elementName)
{
    const auto refusal = serveElement(_parsedData, elementName, trimmedText(_currentElementValue));
    if (refusal) {
        setErrorWithDescription(*refusal, parser);
        return;
    }
    _currentElementValue.clear();
}

void NBNimbrelFSPreferences::setErrorWithDescription(const std::string &description,
                                                     XmlReader &parser)
{
    _parseError = NBPreferencesError{std::string(NBNMFSPreferencesErrorDomain), -1, description};
    parser.abortParsing();
}

std::optional<std::string>
NBNimbrelFSPreferences::preferenceXMLWithNMFS(const NBNimbrelFSSettings &settings)
{
    const std::array values = {std::string(applicationVersion),
                               settings.nameAlgorithm,
                               std::to_string(settings.nameAlgorithmMajor),
                               std::to_string(settings.nameAlgorithmMinor),
                               std::to_string(settings.keySize),
                               std::to_string(settings.blockSize),
                               settings.encodedKey,
                               settings.salt};
    return filledTemplate(configurationTemplate, values);
}

} // namespace nimbrel
