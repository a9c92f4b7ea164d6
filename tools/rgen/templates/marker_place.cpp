// SPDX-License-Identifier: MIT
#include "templates/marker_place.h"

#include <algorithm>

#include "templates/xslt_markup.h"
#include "templates/xslt_vocabulary.h"

namespace cli {
namespace {

bool isInOneOf(const std::vector<TextRange>& ranges, std::size_t offset) {
    return std::any_of(ranges.begin(), ranges.end(),
                       [offset](const TextRange& range) { return range.contains(offset); });
}

/// The last element that begins before the offset, or null.
const MarkupElement* elementBefore(const Markup& markup, std::size_t offset) {
    const auto next = std::upper_bound(
        markup.elements.begin(), markup.elements.end(), offset,
        [](std::size_t at, const MarkupElement& element) { return at < element.startTag.begin; });
    return next == markup.elements.begin() ? nullptr : &*(next - 1);
}

XsltValue kindOf(const std::string& prefix, const MarkupElement& element,
                 const std::string& attribute) {
    if (element.name.rfind(prefix, 0) != 0) {
        const bool isPlain = attribute.rfind(prefix, 0) == 0 || attribute.rfind("xmlns", 0) == 0;
        return isPlain ? XsltValue::Text : XsltValue::ValueTemplate;
    }
    const XsltElement* known = findXsltElement(element.name.substr(prefix.size()));
    const XsltAttribute* found = known != nullptr ? known->find(attribute) : nullptr;
    return found != nullptr ? found->kind : XsltValue::Text;
}

/// Reads the part of a value before the marker.
class ValueReader {
public:
    explicit ValueReader(bool isExpression) : hasBraces_(!isExpression), isInside_(isExpression) {}

    void read(std::string_view before) {
        for (std::size_t i = 0; i < before.size(); ++i) {
            const char letter = before[i];
            if (!isInside_) {
                const bool isDouble = before.substr(i, 2) == "{{";
                isInside_ = letter == '{' && !isDouble;
                if (isDouble) ++i;
            } else if (quote_ != '\0') {
                if (letter == quote_) quote_ = '\0';
            } else if (letter == '"' || letter == '\'') {
                quote_ = letter;
            } else if (letter == '}' && hasBraces_) {
                isInside_ = false;
            }
        }
    }

    MarkerContext context() const {
        if (!isInside_) return MarkerContext::ValueTemplate;
        return quote_ != '\0' ? MarkerContext::XPathString : MarkerContext::XPath;
    }
    char quote() const { return quote_; }

private:
    bool hasBraces_;
    bool isInside_;
    char quote_ = '\0';
};

MarkerPlace placeInAttribute(std::string_view text, const MarkupAttribute& attribute,
                             XsltValue kind, std::size_t offset) {
    MarkerPlace place;
    place.attribute = &attribute;
    place.context = MarkerContext::PlainAttribute;
    const bool isExpression = kind == XsltValue::Expression || kind == XsltValue::Pattern;
    const bool isTemplate = kind == XsltValue::ValueTemplate || kind == XsltValue::ChoiceTemplate;
    if (!isExpression && !isTemplate) return place;
    const AttributeValue before(text, {attribute.valueRange.begin, offset});
    ValueReader reader(isExpression);
    reader.read(before.text());
    place.context = reader.context();
    place.stringQuote = reader.quote();
    return place;
}

/// A style sheet or script between its tags: the output does not escape its text.
bool isInCode(const Markup& markup, const MarkupElement* element, std::size_t offset) {
    while (element != nullptr) {
        const bool isOpen = element->startTag.end <= offset && offset < element->endTag.begin;
        if (isOpen && (element->name == "style" || element->name == "script")) return true;
        element = element->parent == noElement ? nullptr : &markup.elements[element->parent];
    }
    return false;
}

}  // namespace

MarkerPlace markerPlace(std::string_view text, const Markup& markup, std::size_t offset) {
    MarkerPlace place;
    if (isInOneOf(markup.comments, offset)) place.context = MarkerContext::Comment;
    if (isInOneOf(markup.cdataSections, offset)) place.context = MarkerContext::CdataSection;
    const MarkupElement* element = elementBefore(markup, offset);
    if (place.context != MarkerContext::Content || element == nullptr) return place;
    if (element->startTag.contains(offset)) {
        for (const MarkupAttribute& attribute : element->attributes) {
            if (!attribute.valueRange.contains(offset)) continue;
            const XsltValue kind = kindOf(xsltPrefix(text, markup), *element, attribute.name);
            return placeInAttribute(text, attribute, kind, offset);
        }
        return place;
    }
    const char before = offset > 0 ? text[offset - 1] : '\0';
    const bool isQuoted = before == '"' || before == '\'';
    if (isQuoted && isInCode(markup, element, offset)) {
        place.context = MarkerContext::CodeString;
        place.stringQuote = before;
    }
    return place;
}

}  // namespace cli
