// One invalid character or unknown reference in persistent data or in a template makes the library
// lose all references after it, so none may get there.
//
// SPDX-License-Identifier: MIT
#include "text/escaping.h"

#include <algorithm>

#include "error/failures.h"
#include "text/character_check.h"
#include "text/references.h"

namespace rgenh {
namespace {

constexpr std::size_t longestShown = 80;

std::string replaced(std::string_view text, char letter, std::string_view replacement) {
    std::string result;
    result.reserve(text.size());
    for (const char each : text) {
        if (each == letter) {
            result += replacement;
        } else {
            result += each;
        }
    }
    return result;
}

/// White space as references that are read twice.
std::string blankReferences(std::string_view blanks) {
    std::string result;
    for (const char blank : blanks)
        result += "&amp;#" + std::to_string(static_cast<int>(blank)) + ";";
    return result;
}

/// The CDATA section at the start of a text; empty if there is none or it has no end.
std::string_view sectionAt(std::string_view text) {
    constexpr std::string_view start = "<![CDATA[";
    constexpr std::string_view end = "]]>";
    if (text.substr(0, start.size()) != start) return {};
    const std::size_t close = text.find(end, start.size());
    return close == std::string_view::npos ? std::string_view()
                                           : text.substr(0, close + end.size());
}

/// A template must not contain "]]>" except as the end of a section. The text may follow a "]]" of
/// the template.
std::string withoutSectionEnds(std::string_view text) {
    std::string result;
    std::size_t brackets = 2;
    while (!text.empty()) {
        const std::string_view section = text[0] == '<' ? sectionAt(text) : std::string_view();
        const std::string_view part = section.empty() ? text.substr(0, 1) : section;
        result += part == ">" && brackets >= 2 ? "&gt;" : part;
        brackets = part == "]" ? brackets + 1 : 0;
        text.remove_prefix(part.size());
    }
    return result;
}

[[noreturn]] void refuse(std::size_t size, std::size_t longest, const char* what) {
    throw ArgumentError(std::string("the ") + what + " is too long for persistent data: " +
                        std::to_string(size) + " of " + std::to_string(longest) + " bytes");
}

/// The limit applies to the text after the first of the two readings: "&" counts as "&amp;".
std::string checkedLength(std::string content) {
    if (content.size() <= longestStoredText) return content;
    const std::size_t size = withoutReferences(content).size();
    if (size > longestStoredText) refuse(size, longestStoredText, "text");
    return content;
}

/// What the library takes for the name of a reference: everything up to the next ";".
std::string_view libraryReference(std::string_view text, std::size_t at) {
    const std::size_t length = text.find(';', at) + 1 - at;
    return text.substr(at, std::min(longestShown, length));
}

}  // namespace

std::string escaped(std::string_view text) {
    return replaced(text, '&', "&amp;");
}

std::string storedText(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::string held = withInvalidReplaced(text);
    const std::string_view view = held;
    const std::size_t start = std::min(view.find_first_not_of(blanks), view.size());
    const std::size_t end = std::max(start, view.find_last_not_of(blanks) + 1);
    return checkedLength(blankReferences(view.substr(0, start)) +
                         replaced(view.substr(start, end - start), '&', "&amp;amp;") +
                         blankReferences(view.substr(end)));
}

std::string storedMarkup(std::string_view content) {
    return checkedLength(checkedMarkup(content));
}

std::string storedName(std::string_view name) {
    std::string held = withInvalidReplaced(name);
    if (held.size() > longestStoredName) refuse(held.size(), longestStoredName, "name");
    return held;
}

std::string checkedMarkup(std::string_view content) {
    const std::string text = withInvalidReplaced(content);
    const std::size_t lastEnd = text.rfind(';') + 1;
    return mapAmpersands(text, [&](std::string_view reference, std::size_t at) {
        std::string held = heldReference(reference);
        if (!held.empty()) return held;
        // Without a ";" after it, or with "#", only the "&" is lost.
        const bool isNumeric = at + 1 < text.size() && text[at + 1] == '#';
        if (isNumeric || at >= lastEnd) return std::string(reference);
        throw ArgumentError("the text contains the unknown reference " +
                            std::string(libraryReference(text, at)));
    });
}

std::string translationMarkup(std::string_view original, std::string_view translation) {
    const auto has = [original](std::string_view part) {
        return original.find(part) != std::string_view::npos;
    };
    std::string text = withInvalidReplaced(translation);
    if (!has("&")) text = escaped(text);
    text = mapAmpersands(text, [](std::string_view reference, std::size_t /*at*/) {
        std::string held = heldReference(reference);
        if (held.empty()) held = "&amp;" + std::string(reference.substr(1));
        return held;
    });
    // With an element in the original the translation may have elements with attributes. A marked
    // text without one may be in an attribute, which apostrophes delimit since the text has quotes.
    if (has("<")) return withoutSectionEnds(text);
    text = replaced(text, '<', "&lt;");
    if (!has(">")) text = replaced(text, '>', "&gt;");
    if (!has("'")) text = replaced(text, '\'', "&#39;");
    return withoutSectionEnds(text);
}

}  // namespace rgenh
