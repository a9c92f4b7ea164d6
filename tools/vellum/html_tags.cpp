// A scanner for start tags. What must hold for every page, however it is written, relies on
// possibleTags, which does not care where a tag stands; startTags passes over text.
//
// SPDX-License-Identifier: MIT
#include "html_tags.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "failure.h"

namespace vellum {
namespace {

constexpr std::string_view blanks = " \t\n\r\f";

bool isLetter(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
}

/// The place of `wanted` (lower case) from `at` on, in whatever letter case.
std::size_t findWord(const std::string& text, std::string_view wanted, std::size_t at) {
    const auto same = [](char one, char other) {
        return (one >= 'A' && one <= 'Z' ? static_cast<char>(one - 'A' + 'a') : one) == other;
    };
    const auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(),
                                   wanted.begin(), wanted.end(), same);
    return found == text.end() ? std::string::npos : static_cast<std::size_t>(found - text.begin());
}

/// "&amp;", "&quot;", "&lt;", "&gt;" and numbers below 128; that is all that addresses need.
std::string withoutReferences(const std::string& text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t end = text[i] == '&' ? text.find(';', i) : std::string::npos;
        const std::string name =
            end == std::string::npos || end - i > 8 ? "" : text.substr(i + 1, end - i - 1);
        char meant = '\0';
        if (name == "amp") meant = '&';
        if (name == "quot") meant = '"';
        if (name == "lt") meant = '<';
        if (name == "gt") meant = '>';
        if (name.size() > 1 && name[0] == '#') {
            const bool isHex = name[1] == 'x' || name[1] == 'X';
            const long number =
                std::strtol(name.c_str() + (isHex ? 2 : 1), nullptr, isHex ? 16 : 10);
            if (number > 0 && number < 128) meant = static_cast<char>(number);
        }
        plain += meant == '\0' ? text[i] : meant;
        if (meant != '\0') i = end;
    }
    return plain;
}

class TagReader {
public:
    TagReader(const std::string& page, std::size_t start) : page_(page), at_(start) {}

    HtmlTag read() {
        HtmlTag tag;
        tag.start = at_++;
        tag.name = lowerCase(takeUntil(" \t\n\r\f/>"));
        while (skip(" \t\n\r\f/") && page_[at_] != '>')
            tag.attributes.push_back(readAttribute());
        tag.end = std::min(at_ + 1, page_.size());
        return tag;
    }

private:
    /// Moves past these characters; false at the end of the page.
    bool skip(std::string_view letters) {
        at_ = std::min(page_.find_first_not_of(letters, at_), page_.size());
        return at_ < page_.size();
    }

    std::string takeUntil(std::string_view letters) {
        const std::size_t end = std::min(page_.find_first_of(letters, at_), page_.size());
        std::string text = page_.substr(at_, end - at_);
        at_ = end;
        return text;
    }

    HtmlAttribute readAttribute() {
        HtmlAttribute attribute;
        const bool beginsWithEquals = page_[at_] == '=';
        if (beginsWithEquals) ++at_;
        attribute.name = (beginsWithEquals ? "=" : "") + lowerCase(takeUntil(" \t\n\r\f/>="));
        if (!skip(blanks) || page_[at_] != '=') return attribute;
        ++at_;
        if (!skip(blanks)) return attribute;
        const char quote = page_[at_];
        if (quote == '"' || quote == '\'') {
            ++at_;
            attribute.value = takeUntil(std::string_view(&quote, 1));
            if (at_ < page_.size()) ++at_;
        } else {
            attribute.value = takeUntil(" \t\n\r\f>");
        }
        attribute.hasReference = attribute.value.find('&') != std::string::npos;
        attribute.value = withoutReferences(attribute.value);
        return attribute;
    }

    const std::string& page_;
    std::size_t at_;
};

/// The place behind a comment that starts at `at`.
std::size_t endOfComment(const std::string& page, std::size_t at) {
    if (page.compare(at, 5, "<!-->") == 0) return at + 5;
    if (page.compare(at, 6, "<!--->") == 0) return at + 6;
    const std::size_t end = page.find("-->", at + 4);
    const std::size_t banged = page.find("--!>", at + 4);
    if (banged < end) return banged + 4;
    return end == std::string::npos ? page.size() : end + 3;
}

std::size_t behindNext(const std::string& page, char letter, std::size_t at) {
    const std::size_t place = page.find(letter, at);
    return place == std::string::npos ? page.size() : place + 1;
}

/// The place behind an element whose contents are text.
std::size_t endOfTextElement(const std::string& page, const HtmlTag& tag) {
    for (const char* name : {"script", "style", "title", "textarea"}) {
        if (tag.name != name) continue;
        return std::min(findWord(page, "</" + tag.name, tag.end), page.size());
    }
    return tag.end;
}

}  // namespace

std::string HtmlTag::attribute(const std::string& wanted) const {
    for (const HtmlAttribute& one : attributes) {
        if (one.name == wanted) return one.value;
    }
    return {};
}

bool HtmlTag::hasAttribute(const std::string& wanted) const {
    return std::any_of(attributes.begin(), attributes.end(),
                       [&wanted](const HtmlAttribute& one) { return one.name == wanted; });
}

std::vector<HtmlTag> startTags(const std::string& page) {
    std::vector<HtmlTag> tags;
    std::size_t at = page.find('<');
    while (at < page.size()) {
        const char next = at + 1 < page.size() ? page[at + 1] : '\0';
        if (isLetter(next)) {
            tags.push_back(TagReader(page, at).read());
            at = endOfTextElement(page, tags.back());
        } else if (page.compare(at, 4, "<!--") == 0) {
            at = endOfComment(page, at);
        } else if (next == '!' || next == '?' || next == '/') {
            at = behindNext(page, '>', at);
        } else {
            ++at;
        }
        at = page.find('<', at);
    }
    return tags;
}

std::vector<HtmlTag> possibleTags(const std::string& page) {
    std::vector<HtmlTag> tags;
    // Tags that never end are read over and over again.
    std::size_t budget = page.size() * 64 + 1'000'000;
    for (std::size_t at = page.find('<'); at != std::string::npos; at = page.find('<', at + 1)) {
        if (at + 1 == page.size() || !isLetter(page[at + 1])) continue;
        HtmlTag tag = TagReader(page, at).read();
        if (tag.end - tag.start > budget) {
            throw Failure(ExitCode::Input, "the page has too many tags without an end; correct it");
        }
        budget -= tag.end - tag.start;
        if (tag.hasAttribute("rel") || tag.hasAttribute("http-equiv"))
            tags.push_back(std::move(tag));
    }
    return tags;
}

std::size_t endOfDocumentType(const std::string& page) {
    const std::size_t mark = page.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    for (std::size_t at = mark;;) {
        at = page.find_first_not_of(blanks, at);
        if (at == std::string::npos || page[at] != '<') return mark;
        if (page.compare(at, 4, "<!--") == 0) {
            at = endOfComment(page, at);
        } else if (page.compare(at, 2, "<?") == 0) {
            at = behindNext(page, '>', at);
        } else if (findWord(page.substr(at, 9), "<!doctype", 0) == 0) {
            return behindNext(page, '>', at);
        } else {
            return mark;
        }
    }
}

std::string lowerCase(std::string text) {
    for (char& letter : text) {
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    }
    return text;
}

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace vellum
