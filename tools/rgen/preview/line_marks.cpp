// SPDX-License-Identifier: MIT
#include "preview/line_marks.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "templates/markup_scanner.h"
#include "templates/template_text.h"
#include "templates/translation_markers.h"

namespace cli {
namespace {

constexpr std::string_view xsltNamespace = "http://www.w3.org/1999/XSL/Transform";

/// The namespace of an element: its own declaration of the prefix, or that of the nearest ancestor.
std::string_view namespaceOf(const std::string& text, const Markup& markup,
                             const MarkupElement& element) {
    const std::size_t colon = element.name.find(':');
    const std::string declaration =
        colon == std::string::npos ? "xmlns" : "xmlns:" + element.name.substr(0, colon);
    for (const MarkupElement* each = &element;; each = &markup.elements[each->parent]) {
        if (const MarkupAttribute* const found = each->find(declaration)) {
            return std::string_view(text).substr(found->valueRange.begin, found->valueRange.size());
        }
        if (each->parent == noElement) return {};
    }
}

bool isInside(const std::vector<TranslationMarker>& markers, std::size_t offset) {
    return std::any_of(markers.begin(), markers.end(), [offset](const TranslationMarker& marker) {
        return offset >= marker.begin && offset < marker.end;
    });
}

}  // namespace

std::string withLineMarks(const std::string& templateText) {
    const Markup markup = scanMarkup(templateText);
    if (!markup.problems.empty()) return templateText;
    const std::vector<TranslationMarker> markers = findMarkers(templateText);
    const LineIndex lines(templateText);
    std::string marked;
    std::size_t copied = 0;
    for (const MarkupElement& element : markup.elements) {
        const bool isInstruction = namespaceOf(templateText, markup, element) == xsltNamespace;
        if (isInstruction || isInside(markers, element.startTag.begin)) continue;
        const TextPosition place = lines.position(element.startTag.begin);
        marked.append(templateText, copied, element.nameRange.end - copied);
        marked += std::string(" ") + placeAttribute + "=\"" + std::to_string(place.line) + ":" +
                  std::to_string(place.column) + "\"";
        copied = element.nameRange.end;
    }
    return marked.append(templateText, copied, std::string::npos);
}

}  // namespace cli
