// The insertion stands in front of everything but the document type. A policy further down would
// come too late for a script above it; and a parser that meets "meta" there opens the head itself
// and takes the attributes of the page's own html element later.
//
// SPDX-License-Identifier: MIT
#include "page/staged_page.h"

#include <unordered_set>

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

/// The attribute of an element that names a file to show; null for elements that show none.
const char* linkAttribute(const HtmlTag& tag) {
    if (tag.name == "img" || tag.name == "source" || tag.name == "embed") return "src";
    if (tag.name == "image") return "href";
    const bool isStyle = tag.name == "link" &&
                         lowerCase(tag.attribute("rel")).find("stylesheet") != std::string::npos;
    return isStyle ? "href" : nullptr;
}

/// What the tags of a page say.
class TagNotes {
public:
    TagNotes(const std::string& base, StagedPage& staged) : base_(base), staged_(staged) {
        staged_.base = base;
    }

    void take(const HtmlTag& tag) {
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

/// On purpose: a start with something like a tag in a comment gives way to a plain one. Whoever
/// read it as a tag would read on through the insertion.
void insertBehindDocumentType(const std::string& insertion, std::string& page) {
    const std::size_t end = endOfDocumentType(page);
    const bool isPlain = !hasTagStart(page, end);
    const std::string start = isPlain ? page.substr(0, end) : "<!DOCTYPE html>";
    page.replace(0, end, byteOrderMark + start + insertion);
}

}  // namespace

StagedPage stagePage(std::string page, const std::string& base, Checkpoint& checkpoint) {
    StagedPage staged;
    page = pageInUtf8(std::move(page), checkpoint);
    TagNotes notes(base, staged);
    visitStartTags(page, checkpoint, [&notes](const HtmlTag& tag) {
        notes.take(tag);
        return true;
    });
    // The mark comes before every declaration, those of the page included.
    std::string insertion = "<meta charset=\"utf-8\">";
    insertion += policy;
    // Of several bases the first counts; the page's own would count from the copy's folder.
    insertion += "<base href=\"" + escapedAttribute(cleanUtf8(staged.base, checkpoint)) + "\">";
    insertion += "<style>@page{size:A4}</style>";
    disarm(page, checkpoint);
    insertBehindDocumentType(insertion, page);
    staged.content = std::move(page);
    return staged;
}

}  // namespace vellum
