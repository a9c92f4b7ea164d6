// SPDX-License-Identifier: MIT
#include "templates/xslt_structure_check.h"

#include <libxml/encoding.h>

#include <algorithm>
#include <cstring>

#include "base/suggestion.h"
#include "templates/xslt_vocabulary.h"

namespace cli {
namespace {

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

/// `"a", "b" and "c"`, each in quotes.
std::string listOf(const std::vector<std::string>& words, const char* last) {
    std::string list;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0) list += i + 1 == words.size() ? std::string(" ") + last + " " : ", ";
        list += quoted(words[i]);
    }
    return list;
}

std::string localName(const xmlNode* node) {
    return nameOf(node->name);
}

std::string displayName(const xmlNode* node) {
    return isXsltElement(node) ? "xsl:" + localName(node) : localName(node);
}

bool isWhiteSpaceOnly(const xmlNode* text) {
    const char* content = reinterpret_cast<const char*>(text->content);
    return content == nullptr || std::strspn(content, " \t\r\n") == std::strlen(content);
}

bool isText(const xmlNode* node) {
    return node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE;
}

bool contains(const std::vector<std::string>& words, const std::string& word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// "word" with the nearest known one, or with all of them when there are few.
std::string knownWords(const std::string& word, const std::vector<std::string>& known) {
    const std::string all =
        known.size() == 1 ? "known is " + quoted(known[0]) : "known are " + listOf(known, "and");
    const std::string nearest = nearestWord(word, known);
    return nearest.empty() ? all : "did you mean " + quoted(nearest) + "?";
}

class StructureCheck {
public:
    explicit StructureCheck(const TemplateTree& tree) : tree_(tree) {}

    Findings check() {
        visit(tree_.root(), nullptr);
        return std::move(findings_);
    }

private:
    void addAt(const xmlNode* element, Severity severity, const char* code, std::string what,
               std::string advice) {
        findings_.add(
            tree_.atElement(element, make(severity, code, std::move(what), std::move(advice))));
    }

    static Finding make(Severity severity, const char* code, std::string what, std::string advice) {
        Finding finding;
        finding.severity = severity;
        finding.code = code;
        finding.what = std::move(what);
        finding.advice = std::move(advice);
        return finding;
    }

    void visit(xmlNode* node, xmlNode* parent) {
        checkPrefixes(node);
        if (isXsltElement(node)) {
            visitXslt(node, parent);
        } else if (parent != nullptr && isXsltElement(parent)) {
            checkLiteralPlace(node, parent);
        }
        for (xmlNode* child = elementFrom(node->children); child != nullptr;
             child = elementFrom(child->next)) {
            visit(child, node);
        }
    }

    void visitXslt(xmlNode* node, xmlNode* parent) {
        const XsltElement* element = findXsltElement(localName(node));
        if (element == nullptr) return reportUnknownElement(node);
        if (parent != nullptr) checkPlace(node, *element, parent);
        checkAttributes(node, *element);
        checkContent(node, *element);
        checkSpecial(node);
    }

    void reportUnknownElement(const xmlNode* node) {
        const std::string name = localName(node);
        if (const std::string other = alternativeFor(name); !other.empty()) {
            addAt(node, Severity::Error, "unknown-element",
                  "XSLT 1.0 has no element " + quoted(name), other);
            return;
        }
        addAt(node, Severity::Error, "unknown-element", "XSLT has no element " + quoted(name),
              didYouMean(name, xsltElementNames(), "remove it"));
    }

    void checkPrefixes(const xmlNode* node) {
        const MarkupElement* markup = tree_.markupOf(node);
        if (markup == nullptr) return;
        const std::size_t colon = markup->name.find(':');
        if (colon == std::string::npos || node->ns != nullptr) return;
        const std::string prefix = markup->name.substr(0, colon);
        addAt(node, Severity::Error, "unknown-prefix",
              "the prefix " + quoted(prefix) + " is not declared",
              "add xmlns:" + prefix + "=\"...\" to the root element");
    }

    bool isStylesheetElement(const xmlNode* node) const {
        return isXsltElement(node, "stylesheet") || isXsltElement(node, "transform");
    }

    void checkPlace(const xmlNode* node, const XsltElement& element, const xmlNode* parent) {
        const std::string name = displayName(node);
        if (isXsltElement(node, "fallback")) return;
        if (isStylesheetElement(parent)) {
            if (!element.isTopLevel)
                reportMisplaced(node, name + " cannot be a child of " + displayName(parent),
                                "write it inside xsl:template");
            return;
        }
        const XsltElement* outer =
            isXsltElement(parent) ? findXsltElement(localName(parent)) : nullptr;
        if (isXsltElement(parent) && outer == nullptr) return;
        if (outer != nullptr && contains(outer->children, element.name)) {
            return checkOrder(node, parent, *outer);
        }
        const bool takesSequence = outer == nullptr || outer->content == XsltContent::Sequence;
        if (takesSequence && element.isInstruction) return;
        reportMisplaced(node, name + " cannot be inside " + quoted(displayName(parent)),
                        placeAdvice(element, outer));
    }

    void reportMisplaced(const xmlNode* node, const std::string& what, const std::string& advice) {
        addAt(node, Severity::Error, "misplaced-element", what, advice);
    }

    static std::string placeAdvice(const XsltElement& element, const XsltElement* outer) {
        const std::string name = element.name;
        if (name == "when" || name == "otherwise") return "write it inside xsl:choose";
        if (name == "sort") return "write it first in xsl:for-each or xsl:apply-templates";
        if (name == "with-param") return "write it inside xsl:call-template or xsl:apply-templates";
        if (name == "param") return "write it first in xsl:template";
        if (element.isTopLevel && !element.isInstruction)
            return "write it as a child of xsl:stylesheet";
        if (outer != nullptr && !outer->children.empty())
            return "only xsl:" + joined(outer->children) + " can be there";
        return "write it somewhere else";
    }

    static std::string joined(const std::vector<std::string>& names) {
        std::string text;
        for (std::size_t i = 0; i < names.size(); ++i)
            text += (i > 0 ? " and xsl:" : "") + names[i];
        return text;
    }

    /// xsl:param and xsl:sort come before everything else of a sequence.
    void checkOrder(const xmlNode* node, const xmlNode* parent, const XsltElement& outer) {
        if (outer.content != XsltContent::Sequence) return;
        for (const xmlNode* before = parent->children; before != node; before = before->next) {
            const bool isOther = before->type == XML_ELEMENT_NODE
                                     ? !isXsltElement(before, localName(node).c_str())
                                     : isText(before) && !isWhiteSpaceOnly(before);
            if (!isOther) continue;
            reportMisplaced(node, displayName(node) + " must come first in " + displayName(parent),
                            "move it up");
            return;
        }
    }

    void checkLiteralPlace(const xmlNode* node, const xmlNode* parent) {
        const XsltElement* outer = findXsltElement(localName(parent));
        if (outer == nullptr || outer->content == XsltContent::Sequence) return;
        if (isStylesheetElement(parent)) {
            if (node->ns == nullptr)
                reportMisplaced(node, quoted(localName(node)) + " is not inside a template",
                                "write it inside xsl:template");
            return;
        }
        const bool isEmpty = outer->content == XsltContent::Nothing;
        const std::string what =
            isEmpty ? displayName(parent) + " must be empty"
                    : quoted(localName(node)) + " cannot be inside " + displayName(parent);
        reportMisplaced(node, what, isEmpty ? "move what is inside out of it" : "move it");
    }

    void checkAttributes(const xmlNode* node, const XsltElement& element) {
        bool hasUnknown = false;
        for (const xmlAttr* one = node->properties; one != nullptr; one = one->next) {
            if (one->ns != nullptr) continue;
            const XsltAttribute* attribute = element.find(nameOf(one->name));
            if (attribute == nullptr) {
                hasUnknown = true;
                reportUnknownAttribute(node, nameOf(one->name), element);
            } else {
                checkChoice(node, *attribute);
            }
        }
        for (const XsltAttribute& attribute : element.attributes) {
            if (!attribute.isRequired || hasUnknown) continue;
            if (plainAttribute(node, attribute.name) != nullptr) continue;
            addAt(node, Severity::Error, "missing-attribute",
                  displayName(node) + " needs the attribute " + quoted(attribute.name),
                  std::string("add ") + attribute.name + "=\"...\"");
        }
    }

    void reportUnknownAttribute(const xmlNode* node, const std::string& name,
                                const XsltElement& element) {
        std::vector<std::string> known;
        for (const XsltAttribute& attribute : element.attributes)
            known.emplace_back(attribute.name);
        const std::string advice =
            known.empty() ? "remove it"
                          : didYouMean(name, known, "known are " + listOf(known, "and"));
        findings_.add(tree_.atAttribute(
            node, name,
            make(Severity::Error, "unknown-attribute",
                 quoted(displayName(node)) + " has no attribute " + quoted(name), advice)));
    }

    void checkChoice(const xmlNode* node, const XsltAttribute& attribute) {
        const std::string value = attributeText(node, attribute.name);
        if (isXsltElement(node, "output") && std::strcmp(attribute.name, "encoding") == 0)
            return checkEncoding(node, value);
        if (attribute.choices.empty() || contains(attribute.choices, value)) return;
        if (attribute.kind == XsltValue::ChoiceTemplate && value.find('{') != std::string::npos)
            return;
        addAtValue(node, attribute.name, value, knownWords(value, attribute.choices));
    }

    void addAtValue(const xmlNode* node, const std::string& name, const std::string& value,
                    const std::string& advice) {
        findings_.add(tree_.atValue(node, name, {0, value.size()},
                                    make(Severity::Error, "unknown-value",
                                         "unknown " + name + " " + quoted(value), advice)));
    }

    void checkEncoding(const xmlNode* node, const std::string& value) {
        xmlCharEncodingHandler* handler = nullptr;
        const bool isKnown = xmlOpenCharEncodingHandler(value.c_str(), 1, &handler) == XML_ERR_OK;
        if (handler != nullptr) xmlCharEncCloseFunc(handler);
        if (isKnown) return;
        const std::vector<std::string> usual{"UTF-8", "UTF-16", "ISO-8859-1", "US-ASCII"};
        addAtValue(node, "encoding", value, knownWords(value, usual));
    }

    void checkContent(const xmlNode* node, const XsltElement& element) {
        if (element.content == XsltContent::Sequence || element.content == XsltContent::TextOnly)
            return;
        for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
            if (!isText(child) || isWhiteSpaceOnly(child)) continue;
            findings_.add(tree_.atText(
                child,
                make(Severity::Error, "misplaced-text",
                     "text inside " + quoted(displayName(node)) + " is not allowed",
                     isStylesheetElement(node) ? "write it inside xsl:template" : "remove it")));
            return;
        }
    }

    void checkSpecial(const xmlNode* node) {
        const std::string name = localName(node);
        if (name == "stylesheet" || name == "transform") checkVersion(node);
        if (name == "template") checkTemplate(node);
        if (name == "choose") checkChoose(node);
        if (name == "variable" || name == "param" || name == "with-param") checkDefinition(node);
        if (name == "attribute") checkAttributePlace(node);
        if (name == "include" || name == "import") checkInclude(node);
        if (name == "document") {
            addAt(node, Severity::Error, "writes-file",
                  "xsl:document writes a file with the rights of the host, below its current "
                  "folder",
                  "a report is one file; remove it");
        }
    }

    void checkVersion(const xmlNode* node) {
        const std::string version = attributeText(node, "version");
        if (version.empty() || version == "1.0") return;
        findings_.add(tree_.atValue(
            node, "version", {0, version.size()},
            make(Severity::Warning, "version", "XSLT " + version + " is not available here",
                 "write version=\"1.0\", and only its elements")));
    }

    void checkTemplate(const xmlNode* node) {
        const bool hasMatch = plainAttribute(node, "match") != nullptr;
        if (!hasMatch && plainAttribute(node, "name") == nullptr) {
            addAt(node, Severity::Error, "missing-attribute",
                  "xsl:template has neither \"match\" nor \"name\"", "add one of them");
        }
        if (!hasMatch && plainAttribute(node, "mode") != nullptr) {
            addAt(node, Severity::Error, "mode-without-match",
                  "xsl:template has \"mode\" but no \"match\"", "add match=\"...\"");
        }
    }

    void checkChoose(const xmlNode* node) {
        std::size_t whens = 0;
        const xmlNode* otherwise = nullptr;
        for (const xmlNode* child = elementFrom(node->children); child != nullptr;
             child = elementFrom(child->next)) {
            if (otherwise != nullptr && isXsltElement(child)) {
                reportMisplaced(child, displayName(child) + " after xsl:otherwise",
                                "move it before xsl:otherwise");
            }
            if (isXsltElement(child, "otherwise")) otherwise = child;
            if (isXsltElement(child, "when")) ++whens;
        }
        if (whens > 0) return;
        addAt(node, Severity::Error, "missing-element", "xsl:choose has no xsl:when",
              "add <xsl:when test=\"...\">");
    }

    void checkDefinition(const xmlNode* node) {
        if (plainAttribute(node, "select") == nullptr || node->children == nullptr) return;
        addAt(node, Severity::Error, "select-and-content",
              displayName(node) + " " + quoted(attributeText(node, "name")) +
                  " has both \"select\" and content",
              "remove one of them");
    }

    /// The XSLT processor drops an attribute that comes after content, and says so only in its log.
    void checkAttributePlace(const xmlNode* node) {
        const xmlNode* parent = node->parent;
        if (parent == nullptr || parent->type != XML_ELEMENT_NODE || isXsltElement(parent)) return;
        for (const xmlNode* before = parent->children; before != node; before = before->next) {
            const bool makesContent =
                isText(before) ? !isWhiteSpaceOnly(before)
                               : before->type == XML_ELEMENT_NODE &&
                                     (!isXsltElement(before) || isXsltElement(before, "text") ||
                                      isXsltElement(before, "value-of"));
            if (!makesContent) continue;
            addAt(node, Severity::Error, "late-attribute",
                  "attribute " + quoted(attributeText(node, "name")) +
                      " comes after the content of " + quoted(localName(parent)) + " and is lost",
                  "move it directly after the start tag");
            return;
        }
    }

    void checkInclude(const xmlNode* node) {
        const std::string name = displayName(node);
        addAt(node, Severity::Error, "include",
              name + " " + quoted(attributeText(node, "href")) +
                  " is not available here: a template has no folder of its own",
              "put the parts into one file with \"rgen bundle\"");
    }

    const TemplateTree& tree_;
    Findings findings_;
};

}  // namespace

Findings structureFindings(const TemplateTree& tree) {
    return StructureCheck(tree).check();
}

}  // namespace cli
