// The escaping itself is the library's.
//
// SPDX-License-Identifier: MIT
#include "base/xml_text.h"

namespace cli {
namespace {

using TextRecord = repgen::Owned<RgenAnsiString>;

std::string textOf(const TextRecord& record) {
    return {record->data, record->length};
}

std::string escaped(const repgen::Text& text, RgenhTextUse use) {
    TextRecord record;
    const std::string& content = text.content();
    repgen::call(rgenh_escapeText, content.data(), content.size(),
                 static_cast<std::uint64_t>(text.form()), std::uint64_t{use}, record.get());
    return textOf(record);
}

/// Tells whether "&...;" is one reference to a character of XML.
bool isReference(const std::string& text) {
    const std::string character = unescaped(text);
    return text.find('&', 1) == std::string::npos && character != text &&
           invalidCharacterIn(character).empty();
}

/// The text from an "&" to the next ";"; empty without one.
std::string referenceAt(const std::string& content, std::size_t ampersand) {
    const std::size_t end = content.find(';', ampersand);
    return end == std::string::npos ? "" : content.substr(ampersand, end - ampersand + 1);
}

}  // namespace

std::string contentOf(const repgen::Text& text) {
    return escaped(text, RGENH_FOR_REPORT);
}

std::string storedContentOf(const repgen::Text& text) {
    return unescaped(escaped(text, RGENH_FOR_PERSISTENT_DATA));
}

std::string translationContent(const std::string& original, const std::string& translation) {
    TextRecord record;
    repgen::call(rgenh_escapeTranslation, original.c_str(), translation.data(),
                 std::uint64_t{translation.size()}, std::uint64_t{RGENH_PLAIN}, record.get());
    return textOf(record);
}

std::string unescaped(const std::string& content) {
    TextRecord record;
    repgen::call(rgenh_unescapeText, content.data(), content.size(), record.get());
    return textOf(record);
}

bool hasPlainAmpersand(const std::string& content) {
    for (std::size_t i = content.find('&'); i != std::string::npos; i = content.find('&', i + 1)) {
        if (!isReference(referenceAt(content, i))) return true;
    }
    return false;
}

/// libxml2 takes everything before the next ";" as the name, including blanks and further "&".
std::optional<std::string> findUnknownReference(const std::string& content) {
    for (std::size_t i = content.find('&'); i != std::string::npos; i = content.find('&', i + 1)) {
        const std::string reference = referenceAt(content, i);
        if (reference.empty()) return std::nullopt;
        if (!isReference(reference)) return reference;
    }
    return std::nullopt;
}

std::string withInvalidCharactersReplaced(const std::string& text) {
    return unescaped(storedContentOf(text));
}

std::string invalidCharacterIn(const std::string& text) {
    RgenhError error;
    error.size = sizeof error;
    const bool isStorable = rgenh_isStorable(text.data(), text.size(), RGENH_PLAIN, &error) == 1;
    return isStorable ? std::string() : error.message;
}

}  // namespace cli
