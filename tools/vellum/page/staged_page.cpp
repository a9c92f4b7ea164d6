// The insertion comes before everything but the document type: a policy further down would not
// apply to scripts above it. At "meta" the parser opens the head by itself; it still applies the
// attributes of the page's own html element afterwards.
//
// SPDX-License-Identifier: MIT
#include "page/staged_page.h"

#include <unordered_set>

#include "base/ascii.h"
#include "page/file_url.h"
#include "page/html_tags.h"
#include "page/page_decoding.h"
#include "page/sanitizer.h"
#include "page/utf8.h"

namespace vellum {
namespace {

constexpr const char* policy =
    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
    "style-src 'unsafe-inline' file: data:; img-src file: data:; font-src file: data:\">";

/// The attribute with the file that an element displays; null for other elements.
const char* linkAttribute(const HtmlTag& tag) {
    if (tag.name == "img" || tag.name == "source" || tag.name == "embed") return "src";
    if (tag.name == "image") return "href";
    const bool isStyle = tag.name == "link" &&
                         lowerCase(tag.attribute("rel")).find("stylesheet") != std::string::npos;
    return isStyle ? "href" : nullptr;
}

/// Collects what the tags of a page say.
class TagCollector {
public:
    TagCollector(const std::string& base, StagedPage& staged) : base_(base), staged_(staged) {
        staged_.base = base;
    }

    void add(const HtmlTag& tag) {
        if (tag.name == "base" && tag.hasAttribute("href") && !hasBase_) {
            hasBase_ = true;
            staged_.base = resolvedUrl(trimmed(tag.attribute("href")), base_);
        }
        if (tag.name == "meta" && lowerCase(tag.attribute("name")) == "vellum:engine")
            staged_.engine = trimmed(tag.attribute("content"));
        const char* const attribute = linkAttribute(tag);
        if (attribute == nullptr) return;
        std::string link = trimmed(tag.attribute(attribute));
        if (shown_.insert(link).second) staged_.shownFiles.push_back(std::move(link));
    }

private:
    const std::string& base_;
    StagedPage& staged_;
    bool hasBase_ = false;
    std::unordered_set<std::string> shown_;
};

std::string escapedAttribute(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        switch (letter) {
            case '&':
                escaped += "&amp;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            default:
                escaped += letter;
        }
    }
    return escaped;
}

bool hasTagStart(const std::string& page, std::size_t end) {
    for (std::size_t at = page.find('<'); at < end; at = page.find('<', at + 1)) {
        if (isTagStart(page, at)) return true;
    }
    return false;
}

/// On purpose: if a comment before the document type contains something like a tag, a plain
/// document type replaces both. A parser that read it as a tag would read on into the insertion.
void insertAfterDocumentType(const std::string& insertion, std::string& page) {
    const std::size_t end = endOfDocumentType(page);
    const bool isPlain = !hasTagStart(page, end);
    const std::string start = isPlain ? page.substr(0, end) : "<!DOCTYPE html>";
    page.replace(0, end, byteOrderMark + start + insertion);
}

}  // namespace

StagedPage stagePage(std::string page, const std::string& base, Checkpoint& checkpoint) {
    StagedPage staged;
    page = pageInUtf8(std::move(page), checkpoint);
    TagCollector collector(base, staged);
    visitStartTags(page, checkpoint, [&collector](const HtmlTag& tag) {
        collector.add(tag);
        return true;
    });
    // The byte order mark overrides every declaration of the page.
    std::string insertion = "<meta charset=\"utf-8\">";
    insertion += policy;
    // The first base counts; the page's own would be relative to the folder of the copy.
    insertion += "<base href=\"" + escapedAttribute(cleanUtf8(staged.base, checkpoint)) + "\">";
    insertion += "<style>@page{size:A4}</style>";
    sanitize(page, checkpoint);
    insertAfterDocumentType(insertion, page);
    staged.content = std::move(page);
    return staged;
}

}  // namespace vellum
