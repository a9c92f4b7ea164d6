// Reads start tags as the tokenizer of the HTML standard does.
//
// SPDX-License-Identifier: MIT
#include "page/html_tags.h"

#include <algorithm>
#include <cstdlib>

#include "base/ascii.h"

namespace vellum {
namespace {

/// The offset of `wanted` (in lower case), searched from `at` ignoring letter case; the size of the
/// page when it is not found.
std::size_t findWord(const std::string& page, std::string_view wanted, std::size_t at) {
    const auto same = [](char one, char other) { return lowerCase(one) == other; };
    const auto found = std::search(page.begin() + static_cast<std::ptrdiff_t>(at), page.end(),
                                   wanted.begin(), wanted.end(), same);
    return static_cast<std::size_t>(found - page.begin());
}

std::size_t firstOf(const std::string& page, std::string_view letters, std::size_t at) {
    return std::min(page.find_first_of(letters, at), page.size());
}

std::size_t firstOther(const std::string& page, std::string_view letters, std::size_t at) {
    return std::min(page.find_first_not_of(letters, at), page.size());
}

std::size_t afterNext(const std::string& page, char letter, std::size_t at) {
    const std::size_t place = page.find(letter, at);
    return place == std::string::npos ? page.size() : place + 1;
}

/// The offset after a comment that starts at `at`. On purpose: one loop for both forms of its end.
/// With a search for each form, many comments could each search the whole page for the other form.
std::size_t endOfComment(const std::string& page, std::size_t at) {
    if (page.compare(at, 5, "<!-->") == 0) return at + 5;
    if (page.compare(at, 6, "<!--->") == 0) return at + 6;
    for (std::size_t dashes = page.find("--", at + 4); dashes != std::string::npos;
         dashes = page.find("--", dashes + 1)) {
        if (page.compare(dashes, 3, "-->") == 0) return dashes + 3;
        if (page.compare(dashes, 4, "--!>") == 0) return dashes + 4;
    }
    return page.size();
}

/// The offset after the contents of an element that contains only text; after the tag for others.
std::size_t endOfTextElement(const std::string& page, const HtmlTag& tag) {
    for (const char* name : {"script", "style", "title", "textarea"}) {
        if (tag.name == name) return findWord(page, "</" + tag.name, tag.end);
    }
    return tag.end;
}

/// The character of a reference; a null character when it is not one of those that are decoded.
char referencedCharacter(std::string_view name) {
    if (name == "amp") return '&';
    if (name == "quot") return '"';
    if (name == "lt") return '<';
    if (name == "gt") return '>';
    if (name.size() < 2 || name[0] != '#') return '\0';
    const bool isHex = name[1] == 'x' || name[1] == 'X';
    const std::string digits(name.substr(isHex ? 2 : 1));
    const long number = std::strtol(digits.c_str(), nullptr, isHex ? 16 : 10);
    return number > 0 && number < 128 ? static_cast<char>(number) : '\0';
}

void addAttribute(const std::string& page, const AttributePosition& place, HtmlTag& tag) {
    for (const char* name : {"charset", "content", "href", "http-equiv", "name", "rel", "src"}) {
        const std::string_view view(page);
        const std::string_view written = view.substr(place.name, place.nameEnd - place.name);
        if (written.size() != std::string_view(name).size() || lowerCase(written) != name) continue;
        if (tag.hasAttribute(name)) return;
        tag.attributes.push_back(
            {name, decodeReferences(view.substr(place.value, place.valueEnd - place.value))});
    }
}

HtmlTag readTag(const std::string& page, std::size_t start, Checkpoint& checkpoint) {
    HtmlTag tag;
    tag.start = start;
    const std::size_t nameEnd = endOfTagName(page, start);
    tag.name = lowerCase(std::string_view(page).substr(start + 1, nameEnd - start - 1));
    std::size_t at = nextAttribute(page, nameEnd);
    while (at < page.size() && page[at] != '>') {
        const AttributePosition place = attributeAt(page, at);
        addAttribute(page, place, tag);
        checkpoint.processed(place.end - at);
        at = nextAttribute(page, place.end);
    }
    tag.end = std::min(at + 1, page.size());
    return tag;
}

}  // namespace

std::string HtmlTag::attribute(std::string_view wanted) const {
    for (const HtmlAttribute& one : attributes) {
        if (one.name == wanted) return one.value;
    }
    return {};
}

bool HtmlTag::hasAttribute(std::string_view wanted) const {
    return std::any_of(attributes.begin(), attributes.end(),
                       [wanted](const HtmlAttribute& one) { return one.name == wanted; });
}

void visitStartTags(const std::string& page, Checkpoint& checkpoint,
                    const std::function<bool(const HtmlTag&)>& visit) {
    for (std::size_t at = page.find('<'); at < page.size();) {
        const std::size_t start = at;
        const char next = at + 1 < page.size() ? page[at + 1] : '\0';
        if (isLetter(next)) {
            const HtmlTag tag = readTag(page, at, checkpoint);
            if (!visit(tag)) return;
            at = endOfTextElement(page, tag);
        } else if (page.compare(at, 4, "<!--") == 0) {
            at = endOfComment(page, at);
        } else if (next == '!' || next == '?' || next == '/') {
            at = afterNext(page, '>', at);
        } else {
            ++at;
        }
        at = page.find('<', at);
        checkpoint.processed(std::min(at, page.size()) - start);
    }
}

bool isTagStart(const std::string& page, std::size_t at) {
    return at + 1 < page.size() && page[at] == '<' && isLetter(page[at + 1]);
}

std::size_t endOfTagName(const std::string& page, std::size_t at) {
    return firstOf(page, " \t\n\r\f/>", at + 1);
}

std::size_t nextAttribute(const std::string& page, std::size_t at) {
    return firstOther(page, " \t\n\r\f/", at);
}

AttributePosition attributeAt(const std::string& page, std::size_t at) {
    AttributePosition place;
    place.name = at;
    // A "=" at its start belongs to the name.
    place.nameEnd = firstOf(page, " \t\n\r\f/>=", at + 1);
    const std::size_t sign = firstOther(page, whiteSpace, place.nameEnd);
    place.value = place.valueEnd = place.end = place.nameEnd;
    if (sign == page.size() || page[sign] != '=') return place;
    place.value = firstOther(page, whiteSpace, sign + 1);
    const char quote = place.value < page.size() ? page[place.value] : '\0';
    if (quote == '"' || quote == '\'') {
        place.valueEnd = std::min(page.find(quote, ++place.value), page.size());
        place.end = std::min(place.valueEnd + 1, page.size());
    } else {
        place.valueEnd = place.end = firstOf(page, " \t\n\r\f>", place.value);
    }
    return place;
}

std::string decodeReferences(std::string_view text) {
    constexpr std::size_t longestName = 7;
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char meant = '\0';
        if (text[i] == '&') {
            // On purpose: a bounded search for the ";". Otherwise each of many "&" would search the
            // whole text.
            const std::string_view name = text.substr(i + 1, longestName + 1);
            const std::size_t length = name.find(';');
            if (length != std::string_view::npos)
                meant = referencedCharacter(name.substr(0, length));
            if (meant != '\0') i += length + 1;
        }
        plain += meant == '\0' ? text[i] : meant;
    }
    return plain;
}

std::size_t endOfDocumentType(const std::string& page) {
    for (std::size_t at = 0;;) {
        at = firstOther(page, whiteSpace, at);
        if (page.compare(at, 4, "<!--") == 0) {
            at = endOfComment(page, at);
        } else if (page.compare(at, 2, "<?") == 0) {
            at = afterNext(page, '>', at);
        } else if (lowerCase(std::string_view(page).substr(at, 9)) == "<!doctype") {
            return afterNext(page, '>', at);
        } else {
            return 0;
        }
    }
}

}  // namespace vellum
