// SPDX-License-Identifier: MIT
#include "templates/xslt_markup.h"

#include "templates/xslt_vocabulary.h"

namespace cli {

std::string xsltPrefix(std::string_view text, const Markup& markup) {
    constexpr std::string_view declaration = "xmlns:";
    if (markup.elements.empty()) return "xsl:";
    for (const MarkupAttribute& attribute : markup.elements[0].attributes) {
        const std::string_view value =
            text.substr(attribute.valueRange.begin, attribute.valueRange.size());
        if (value == xsltNamespace && attribute.name.rfind(declaration, 0) == 0)
            return attribute.name.substr(declaration.size()) + ":";
    }
    return "xsl:";
}

std::string valueOf(std::string_view text, const MarkupElement& element,
                    std::string_view attribute) {
    const MarkupAttribute* found = element.find(attribute);
    return found == nullptr ? std::string() : AttributeValue(text, found->valueRange).text();
}

}  // namespace cli
