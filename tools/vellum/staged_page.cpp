// The insertion stands in front of everything but the document type. A policy further down would
// come too late for a script above it; and a parser that meets "meta" there opens the head itself
// and takes the attributes of the page's own html element later.
//
// SPDX-License-Identifier: MIT
#include "staged_page.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "page_url.h"

namespace vellum {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

constexpr const char* policy =
    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
    "style-src 'unsafe-inline' file: data:; img-src file: data:; font-src file: data:\">";

void appendUtf8(std::uint32_t character, std::string& text) {
    const auto tail = [character](unsigned shift) {
        return static_cast<char>(0x80U | ((character >> shift) & 0x3FU));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += {static_cast<char>(0xC0U | (character >> 6U)), tail(0)};
    } else if (character < 0x10000) {
        text += {static_cast<char>(0xE0U | (character >> 12U)), tail(6), tail(0)};
    } else {
        text += {static_cast<char>(0xF0U | (character >> 18U)), tail(12), tail(6), tail(0)};
    }
}

/// A page in UTF-16 in UTF-8 instead; its mark says so and wins over what it declares.
std::string fromUtf16(const std::string& page, bool bigEndian) {
    constexpr std::uint32_t replacement = 0xFFFD;
    const auto unit = [&page, bigEndian](std::size_t i) {
        const auto first = static_cast<unsigned char>(page[i]);
        const auto second = static_cast<unsigned char>(page[i + 1]);
        return static_cast<std::uint32_t>(bigEndian ? first << 8U | second : second << 8U | first);
    };
    std::string text(byteOrderMark);
    for (std::size_t i = 2; i + 1 < page.size(); i += 2) {
        std::uint32_t character = unit(i);
        const bool isHigh = character >= 0xD800 && character < 0xDC00;
        const std::uint32_t next = isHigh && i + 3 < page.size() ? unit(i + 2) : 0;
        if (next >= 0xDC00 && next < 0xE000) {
            character = 0x10000 + ((character - 0xD800) << 10U) + (next - 0xDC00);
            i += 2;
        } else if (character >= 0xD800 && character < 0xE000) {
            character = replacement;
        }
        appendUtf8(character, text);
    }
    return text;
}

/// The encoding that a tag declares, if it does.
std::string declaredEncoding(const HtmlTag& tag) {
    if (tag.name != "meta") return {};
    if (tag.hasAttribute("charset")) return trimmed(tag.attribute("charset"));
    if (lowerCase(trimmed(tag.attribute("http-equiv"))) != "content-type") return {};
    const std::string content = lowerCase(tag.attribute("content"));
    constexpr std::string_view blanks = " \t\r\n\f";
    std::size_t at = content.find("charset");
    if (at == std::string::npos) return {};
    at = content.find_first_not_of(blanks, at + 7);
    if (at == std::string::npos || content[at] != '=') return {};
    at = std::min(content.find_first_not_of(" \t\r\n\f\"'", at + 1), content.size());
    return content.substr(at, content.find_first_of("; \t\"'", at) - at);
}

std::string encodingOf(const std::string& page, const std::vector<HtmlTag>& tags) {
    if (page.compare(0, byteOrderMark.size(), byteOrderMark) == 0) return "utf-8";
    for (const HtmlTag& tag : tags) {
        std::string encoding = declaredEncoding(tag);
        const bool isName = encoding.find_first_of("\"<>&") == std::string::npos;
        if (!encoding.empty() && isName) return encoding;
    }
    return isUtf8(page) ? "utf-8" : "";
}

/// Replaces a word inside a tag by another of the same length, so that all places stay.
void replaceInside(std::string& page, const HtmlTag& tag, std::string_view word,
                   const std::string& replacement) {
    const std::string text = lowerCase(page.substr(tag.start, tag.end - tag.start));
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1))
        page.replace(tag.start + at, replacement.size(), replacement);
}

/// Links to attachments give way to blanks: an engine would embed the files. A relation that is
/// written with references hides something and counts as one.
void blankAttachments(const std::vector<HtmlTag>& tags, std::string& page) {
    for (const HtmlTag& tag : tags) {
        const bool isAttachment =
            std::any_of(tag.attributes.begin(), tag.attributes.end(), [](const HtmlAttribute& one) {
                return one.name == "rel" &&
                       (one.hasReference ||
                        lowerCase(one.value).find("attachment") != std::string::npos);
            });
        if (!isAttachment) continue;
        std::fill(page.begin() + static_cast<std::ptrdiff_t>(tag.start),
                  page.begin() + static_cast<std::ptrdiff_t>(tag.end), ' ');
    }
}

bool isAllowedEquivalent(const std::string& value) {
    for (const char* allowed : {"content-type", "content-language", "content-security-policy",
                                "x-ua-compatible", "default-style"}) {
        if (lowerCase(trimmed(value)) == allowed) return true;
    }
    return false;
}

void disarmEquivalents(const std::vector<HtmlTag>& tags, std::string& page) {
    constexpr std::string_view name = "http-equiv";
    for (const HtmlTag& tag : tags) {
        const bool isAllowed = std::all_of(
            tag.attributes.begin(), tag.attributes.end(), [&](const HtmlAttribute& one) {
                return one.name != name || isAllowedEquivalent(one.value);
            });
        if (tag.name == "meta" && !isAllowed) replaceInside(page, tag, name, "data-equiv");
    }
}

/// What stands in front must leave the parser where it is: in an encoding with shifts (iso-2022-jp)
/// an escape there would turn the insertion into other letters. Such a start gives way to a plain
/// one.
void insertBehindDocumentType(const std::string& insertion, std::string& page) {
    const std::size_t end = endOfDocumentType(page);
    const std::size_t mark = page.compare(0, byteOrderMark.size(), byteOrderMark) == 0 ? 3 : 0;
    const bool isPlain =
        std::all_of(page.begin() + static_cast<std::ptrdiff_t>(mark),
                    page.begin() + static_cast<std::ptrdiff_t>(end), [](char letter) {
                        return (letter >= ' ' && letter <= '~') || letter == '\n' ||
                               letter == '\r' || letter == '\t';
                    });
    if (isPlain) {
        page.insert(end, insertion);
    } else {
        page.replace(mark, end - mark, "<!DOCTYPE html>" + insertion);
    }
}

std::string escapedAttribute(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        if (letter == '&') {
            escaped += "&amp;";
        } else if (letter == '"') {
            escaped += "&quot;";
        } else {
            escaped += letter;
        }
    }
    return escaped;
}

}  // namespace

StagedPage stagePage(std::string page, const std::string& base) {
    if (page.compare(0, 2, "\xFF\xFE") == 0) page = fromUtf16(page, false);
    if (page.compare(0, 2, "\xFE\xFF") == 0) page = fromUtf16(page, true);
    StagedPage staged;
    staged.base = base;
    staged.tags = startTags(page);
    bool hasBase = false;
    for (const HtmlTag& tag : staged.tags) {
        if (tag.name == "base" && tag.hasAttribute("href") && !hasBase) {
            hasBase = true;
            staged.base = resolvedUrl(trimmed(tag.attribute("href")), base);
        }
        if (tag.name == "meta" && lowerCase(tag.attribute("name")) == "vellum:engine") {
            staged.engine = trimmed(tag.attribute("content"));
        }
    }
    const std::string encoding = encodingOf(page, staged.tags);
    std::string insertion;
    if (!encoding.empty()) insertion += "<meta charset=\"" + encoding + "\">";
    insertion += policy;
    // Of several bases the first counts; the page's own would count from the copy's folder.
    insertion += "<base href=\"" + escapedAttribute(staged.base) + "\">";
    insertion += "<style>@page{size:A4}</style>";
    // Wherever they stand: a parser that takes something for a tag reads it as it is read here,
    // whatever it makes of the text before.
    const std::vector<HtmlTag> candidates = possibleTags(page);
    blankAttachments(candidates, page);
    disarmEquivalents(candidates, page);
    insertBehindDocumentType(insertion, page);
    staged.content = std::move(page);
    return staged;
}

bool isUtf8(const std::string& text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto byte = [&text](std::size_t at) {
            return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
        };
        const unsigned first = byte(i);
        const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
        if (first >= 0x80 && (first < 0xC2 || first > 0xF4)) return false;
        for (std::size_t tail = 1; tail < length; ++tail) {
            const unsigned lowest = tail > 1        ? 0x80
                                    : first == 0xE0 ? 0xA0
                                    : first == 0xF0 ? 0x90
                                                    : 0x80;
            const unsigned highest = tail > 1        ? 0xBF
                                     : first == 0xED ? 0x9F
                                     : first == 0xF4 ? 0x8F
                                                     : 0xBF;
            if (byte(i + tail) < lowest || byte(i + tail) > highest) return false;
        }
        i += length;
    }
    return true;
}

}  // namespace vellum
