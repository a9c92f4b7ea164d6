// SPDX-License-Identifier: MIT
#include "templates/page_check.h"

#include <algorithm>
#include <vector>

#include "base/text_functions.h"

namespace cli {
namespace {

std::string lowerName(const xmlNode* node) {
    std::string name = nameOf(node->name);
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char letter) {
        return static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter | 0x20U : letter);
    });
    return name;
}

bool isHtml(const xmlNode* node, const char* name) {
    return !isXsltElement(node) && lowerName(node) == name;
}

/// The level of "h1" to "h6"; 0 for another element.
int headingLevel(const xmlNode* node) {
    const std::string name = lowerName(node);
    const bool isHeading = !isXsltElement(node) && name.size() == 2 && name[0] == 'h' &&
                           name[1] >= '1' && name[1] <= '6';
    return isHeading ? name[1] - '0' : 0;
}

/// Whether instructions make a part of what is directly in the element.
bool hasComputedContent(const xmlNode* node) {
    for (xmlNode* child = elementFrom(node->children); child != nullptr;
         child = elementFrom(child->next)) {
        if (isXsltElement(child)) return true;
    }
    return false;
}

/// Whether an instruction anywhere inside makes an attribute of this element.
bool makesAttribute(const xmlNode* node, const char* name) {
    for (xmlNode* child = elementFrom(node->children); child != nullptr;
         child = elementFrom(child->next)) {
        if (!isXsltElement(child)) continue;
        if (isXsltElement(child, "attribute")) {
            const std::string made = attributeText(child, "name");
            if (made == name || made.find('{') != std::string::npos) return true;
        }
        if (isXsltElement(child, "call-template") || isXsltElement(child, "apply-templates") ||
            isXsltElement(child, "copy-of") || makesAttribute(child, name))
            return true;
    }
    return false;
}

bool hasAttribute(const xmlNode* node, const char* name) {
    if (plainAttribute(node, name) != nullptr || makesAttribute(node, name)) return true;
    for (const xmlAttr* one = node->properties; one != nullptr; one = one->next) {
        if (nameOf(one->name) == "use-attribute-sets") return true;
    }
    return false;
}

class PageCheck {
public:
    explicit PageCheck(const TemplateTree& tree) : tree_(tree) {}

    Findings check() {
        visit(tree_.root());
        return std::move(findings_);
    }

private:
    void warn(const xmlNode* node, const char* code, std::string what, std::string advice) {
        Finding finding;
        finding.severity = Severity::Warning;
        finding.code = code;
        finding.what = std::move(what);
        finding.advice = std::move(advice);
        findings_.add(tree_.atElement(node, std::move(finding)));
    }

    void visit(const xmlNode* node) {
        if (isXsltElement(node, "template")) headingBefore_ = 0;
        if (!isXsltElement(node)) checkElement(node);
        // What another template adds is not known here.
        if (isXsltElement(node, "call-template") || isXsltElement(node, "apply-templates"))
            headingBefore_ = 0;
        for (xmlNode* child = elementFrom(node->children); child != nullptr;
             child = elementFrom(child->next)) {
            visit(child);
        }
    }

    void checkElement(const xmlNode* node) {
        if (isHtml(node, "html") && !hasAttribute(node, "lang")) {
            warn(node, "page-language", "\"html\" has no language",
                 "add lang='QT_TRANSLATE_NOOP(\"QObject\", \"en\")'");
        }
        if (isHtml(node, "head") && !hasTitle(node)) {
            warn(node, "page-title", "the page has no title", "add <title> to \"head\"");
        }
        if (isHtml(node, "img") && !hasAttribute(node, "alt")) {
            warn(node, "picture-text", "the picture has no text for readers who cannot see it",
                 "add alt=\"...\", or alt=\"\" for a decoration");
        }
        if (isHtml(node, "th") && !hasAttribute(node, "scope") && !hasAttribute(node, "id")) {
            warn(node, "table-head", "it is not said whether this heads a column or a row",
                 "add scope=\"col\" or scope=\"row\"");
        }
        checkHeading(node);
    }

    static bool hasTitle(const xmlNode* head) {
        for (xmlNode* child = elementFrom(head->children); child != nullptr;
             child = elementFrom(child->next)) {
            if (isHtml(child, "title")) return true;
        }
        return hasComputedContent(head);
    }

    void checkHeading(const xmlNode* node) {
        const int level = headingLevel(node);
        if (level == 0) return;
        if (headingBefore_ > 0 && level > headingBefore_ + 1) {
            warn(node, "heading-level",
                 "\"h" + std::to_string(level) + "\" follows \"h" + std::to_string(headingBefore_) +
                     "\"",
                 "write \"h" + std::to_string(headingBefore_ + 1) + "\"");
        }
        headingBefore_ = level;
    }

    const TemplateTree& tree_;
    int headingBefore_ = 0;
    Findings findings_;
};

}  // namespace

Findings pageFindings(const TemplateTree& tree) {
    return PageCheck(tree).check();
}

}  // namespace cli
