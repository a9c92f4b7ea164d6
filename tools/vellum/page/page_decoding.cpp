// On purpose: no engine ever gets the original bytes of a page. If it decoded them itself, bytes
// that the sanitizer takes for text could disappear: in iso-2022-jp, "re" and "l" with an escape
// sequence between them read "rel".
//
// SPDX-License-Identifier: MIT
#include "page/page_decoding.h"

#include <algorithm>

#include "base/ascii.h"
#include "base/failure.h"
#include "page/encodings.h"
#include "page/html_tags.h"
#include "page/utf8.h"

namespace vellum {
namespace {

bool startsWith(const std::string& page, std::string_view start) {
    return page.compare(0, start.size(), start) == 0;
}

/// The encoding label in a "content" attribute.
std::string labelInContent(const std::string& written) {
    const std::string content = lowerCase(written);
    std::size_t at = content.find("charset");
    if (at == std::string::npos) return {};
    at = content.find_first_not_of(whiteSpace, at + 7);
    if (at == std::string::npos || content[at] != '=') return {};
    at = std::min(content.find_first_not_of(" \t\r\n\f\"'", at + 1), content.size());
    return content.substr(at, content.find_first_of("; \t\r\n\f\"'", at) - at);
}

/// The encoding that a tag declares; null when it declares none, or an unknown one.
const Encoding* declaredEncoding(const HtmlTag& tag) {
    if (tag.name != "meta") return nullptr;
    if (tag.hasAttribute("charset"))
        return encodingForLabel(lowerCase(trimmed(tag.attribute("charset"))));
    if (lowerCase(trimmed(tag.attribute("http-equiv"))) != "content-type") return nullptr;
    return encodingForLabel(labelInContent(tag.attribute("content")));
}

/// The first declaration counts, wherever in the page it is.
const Encoding& encodingOf(const std::string& page, Checkpoint& checkpoint) {
    const Encoding* encoding = nullptr;
    visitStartTags(page, checkpoint, [&encoding](const HtmlTag& tag) {
        encoding = declaredEncoding(tag);
        return encoding == nullptr;
    });
    if (encoding != nullptr) return *encoding;
    return *encodingForLabel(isUtf8(page, checkpoint) ? "utf-8" : "windows-1252");
}

}  // namespace

std::string pageInUtf8(std::string page, Checkpoint& checkpoint) {
    using namespace std::string_view_literals;
    if (startsWith(page, byteOrderMark)) return cleanUtf8(page.substr(3), checkpoint);
    if (startsWith(page, "\xFF\xFE")) return utf8OfUtf16(page, 2, false, checkpoint);
    if (startsWith(page, "\xFE\xFF")) return utf8OfUtf16(page, 2, true, checkpoint);
    if (startsWith(page, "<\0?\0x\0"sv)) return utf8OfUtf16(page, 0, false, checkpoint);
    if (startsWith(page, "\0<\0?\0x"sv)) return utf8OfUtf16(page, 0, true, checkpoint);
    const Encoding& encoding = encodingOf(page, checkpoint);
    if (encoding.name == "utf-8"sv) return cleanUtf8(page, checkpoint);
    const auto text = decoded(encoding, page, checkpoint);
    if (text) return cleanUtf8(*text, checkpoint);
    throw Failure(ExitCode::Input, std::string("the page is in the encoding \"") + encoding.name +
                                       "\", which cannot be read here; write it in UTF-8");
}

}  // namespace vellum
