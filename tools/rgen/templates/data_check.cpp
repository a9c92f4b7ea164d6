// SPDX-License-Identifier: MIT
#include "templates/data_check.h"

#include <libxml/parser.h>
#include <libxml/xpath.h>

#include <algorithm>
#include <map>
#include <set>

#include "base/suggestion.h"
#include "base/text_functions.h"
#include "data/xml_nodes.h"
#include "templates/xpath_values.h"

namespace cli {
namespace {

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

Finding make(Severity severity, const char* code, std::string what, std::string advice) {
    Finding finding;
    finding.severity = severity;
    finding.code = code;
    finding.what = std::move(what);
    finding.advice = std::move(advice);
    return finding;
}

/// "3,000".
std::string grouped(std::size_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3; at -= 3)
        digits.insert(at - 3, ",");
    return digits;
}

/// `"rows" (line 12)`, or `match="data" (line 3)`.
std::string templateName(const TemplateTree& tree, std::size_t element) {
    const xmlNode* node = tree.element(element);
    if (node == nullptr) return "?";
    const std::string name = attributeText(node, "name");
    return name.empty() ? "match=" + quoted(attributeText(node, "match")) : quoted(name);
}

/// The calls from the outermost template to the first one that is repeated.
std::string describedCalls(const TemplateTree& tree,
                           const std::vector<std::size_t>& innermostFirst) {
    std::string calls;
    std::set<std::size_t> seen;
    for (auto one = innermostFirst.rbegin(); one != innermostFirst.rend(); ++one) {
        const xmlNode* node = tree.element(*one);
        if (!calls.empty()) calls += " > ";
        calls += templateName(tree, *one);
        if (!seen.insert(*one).second) break;
        if (node != nullptr) calls += " (line " + std::to_string(tree.lineOf(node)) + ")";
    }
    return calls;
}

/// The template that is repeated: the first one that occurs twice from the outermost on.
std::size_t repeatedTemplate(const std::vector<std::size_t>& innermostFirst) {
    std::set<std::size_t> seen;
    for (auto one = innermostFirst.rbegin(); one != innermostFirst.rend(); ++one) {
        if (!seen.insert(*one).second) return *one;
    }
    return innermostFirst.front();
}

class RunReport {
public:
    RunReport(const TemplateTree& tree, const TemplateRun& run) : tree_(tree), run_(run) {}

    Findings make() {
        for (const TemplateMessage& message : run_.messages)
            addMessage(message);
        if (!run_.callChain.empty()) {
            addRecursion();
        } else if (run_.outcome != TemplateRun::Outcome::Done) {
            addErrors();
        }
        return std::move(findings_);
    }

private:
    void addAt(std::size_t element, Finding finding) {
        const xmlNode* node = tree_.element(element);
        findings_.add(tree_.atElement(node != nullptr ? node : tree_.root(), std::move(finding)));
    }

    void addMessage(const TemplateMessage& message) {
        if (message.terminates) {
            addAt(message.element,
                  cli::make(Severity::Error, "terminated",
                            "stopped by the template: " + quoted(message.text), ""));
        } else {
            addAt(message.element,
                  cli::make(Severity::Note, "message", "xsl:message: " + quoted(message.text), ""));
        }
    }

    void addRecursion() {
        const std::size_t repeated = repeatedTemplate(run_.callChain);
        addAt(repeated, cli::make(Severity::Error, "endless-recursion",
                                  "template " + templateName(tree_, repeated) +
                                      " calls itself without end (" +
                                      grouped(run_.callChain.size()) + " levels)",
                                  "the calls: " + describedCalls(tree_, run_.callChain)));
    }

    void addErrors() {
        const bool isTerminated =
            std::any_of(run_.messages.begin(), run_.messages.end(),
                        [](const TemplateMessage& message) { return message.terminates; });
        if (isTerminated) return;
        for (const ProcessorMessage& error : run_.errors)
            addError(error);
    }

    void addError(const ProcessorMessage& error) {
        const char* code =
            run_.outcome == TemplateRun::Outcome::NotCompiled ? "not-compiled" : "run-failed";
        const std::string in = error.expression.empty() ? "" : " in " + quoted(error.expression);
        Finding finding = cli::make(Severity::Error, code, error.text + in, "");
        const bool hasLineOnly = error.element == noElement && error.line > 0;
        if (!hasLineOnly) return addAt(error.element, std::move(finding));
        const std::size_t offset = LineIndex(tree_.text().text()).offsetOfLine(error.line);
        findings_.add(tree_.text().at(offset, offset, std::move(finding)));
    }

    const TemplateTree& tree_;
    const TemplateRun& run_;
    Findings findings_;
};

/// The properties of a data document.
class DataDocument {
public:
    explicit DataDocument(const std::string& text)
        : document_(xmlReadMemory(
              text.data(), static_cast<int>(text.size()), nullptr, "UTF-8",
              XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING)) {
        if (!document_) return;
        collect(xmlDocGetRootElement(document_.get()));
    }

    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& [name, node] : properties_)
            names.push_back(name);
        return names;
    }
    bool contains(const std::string& name) const { return properties_.count(name) != 0; }

    /// The document without these properties, or with another text in them.
    std::string without(const std::vector<std::string>& names) const {
        return changed(names, [](xmlNode* node) {
            xmlUnlinkNode(node);
            xmlFreeNode(node);
        });
    }
    std::string withText(const std::vector<std::string>& names, const char* text) const {
        return changed(names, [text](xmlNode* node) { xmlNodeSetContent(node, xmlText(text)); });
    }

private:
    void collect(xmlNode* root) {
        for (xmlNode* list = root != nullptr ? elementFrom(root->children) : nullptr;
             list != nullptr; list = elementFrom(list->next)) {
            for (xmlNode* node = elementFrom(list->children); node != nullptr;
                 node = elementFrom(node->next)) {
                properties_.emplace(attributeText(node, "name"), node);
            }
        }
    }

    template <typename Change>
    std::string changed(const std::vector<std::string>& names, const Change& change) const {
        xmlChar* written = nullptr;
        int length = 0;
        xmlDocDumpMemory(document_.get(), &written, &length);
        const XmlPtr<xmlChar> text(written);
        const DataDocument copy(std::string(reinterpret_cast<const char*>(text.get()),
                                            static_cast<std::size_t>(length)));
        for (const std::string& name : names) {
            const auto found = copy.properties_.find(name);
            if (found != copy.properties_.end()) change(found->second);
        }
        xmlChar* result = nullptr;
        xmlDocDumpMemory(copy.document_.get(), &result, &length);
        const XmlPtr<xmlChar> resultText(result);
        return std::string(reinterpret_cast<const char*>(resultText.get()),
                           static_cast<std::size_t>(length));
    }

    XmlPtr<xmlDoc> document_;
    std::map<std::string, xmlNode*> properties_;
};

class DataCheck {
public:
    DataCheck(const TemplateTree& tree, const XsltNames& names,
              const std::vector<TemplateExpression>& expressions, const std::string& dataDocument)
        : tree_(tree),
          expressions_(expressions),
          text_(dataDocument),
          data_(dataDocument),
          keys_(keysOf(names)) {}

    Findings check() {
        const TemplateRun run = runTemplate(tree_.text().text(), text_);
        findings_.add(runFindings(tree_, run));
        addRequests();
        if (run.outcome != TemplateRun::Outcome::Done) return std::move(findings_);
        addTexts(run);
        addUnusedValues(run.result);
        return std::move(findings_);
    }

private:
    static KeyDeclarations keysOf(const XsltNames& names) {
        KeyDeclarations keys;
        for (const auto& [name, node] : names.keys)
            keys.emplace(name,
                         KeyDeclaration{attributeText(node, "match"), attributeText(node, "use")});
        return keys;
    }

    void addRequests() {
        const std::vector<std::string> known = data_.names();
        for (const TemplateExpression& one : expressions_) {
            for (const ValueRequest& request : valueRequests(one.text, one.kind, keys_))
                addRequest(one, request, known);
        }
    }

    void addRequest(const TemplateExpression& one, const ValueRequest& request,
                    const std::vector<std::string>& known) {
        requests_.push_back(request);
        if (request.kind != ValueRequest::Kind::Name || data_.contains(request.name)) return;
        const std::string nearest = nearestWord(request.name, known);
        Finding finding =
            nearest.empty()
                ? make(Severity::Note, "no-such-value",
                       "the data has no value " + quoted(request.name), "")
                : make(Severity::Warning, "no-such-value", "no value " + quoted(request.name),
                       "did you mean " + quoted(nearest) + "?");
        inVain_.insert(one.element);
        findings_.add(tree_.atValue(one.element, one.attribute,
                                    {request.offset, request.offset + request.length},
                                    std::move(finding)));
    }

    void addTexts(const TemplateRun& run) {
        for (const auto& [element, texts] : run.texts) {
            const xmlNode* node = tree_.element(element);
            if (node == nullptr) continue;
            if (texts.notNumbers > 0) {
                findings_.add(tree_.atValue(
                    node, "select", {0, attributeText(node, "select").size()},
                    make(Severity::Warning, "not-a-number", "this is \"NaN\" on the page",
                         "a value is missing or is not a number")));
            } else if (texts.empty == texts.all && inVain_.count(node) == 0) {
                findings_.add(tree_.atValue(
                    node, "select", {0, attributeText(node, "select").size()},
                    make(Severity::Note, "empty-text", "this is empty on the page", "")));
            }
        }
    }

    bool isRequested(const std::string& name) const {
        return std::any_of(
            requests_.begin(), requests_.end(), [&name](const ValueRequest& request) {
                return request.kind == ValueRequest::Kind::Name && request.name == name;
            });
    }

    /// A value is unused when the page is the same without it, with another text and with a number.
    bool makesNoDifference(const std::vector<std::string>& names, const std::string& page) const {
        const std::string& text = tree_.text().text();
        return runTemplate(text, data_.without(names)).result == page &&
               runTemplate(text, data_.withText(names, "~")).result == page &&
               runTemplate(text, data_.withText(names, "8271")).result == page;
    }

    std::vector<std::string> unusedOf(const std::vector<std::string>& names,
                                      const std::string& page) const {
        if (names.empty()) return {};
        if (makesNoDifference(names, page)) return names;
        if (names.size() == 1) return {};
        const auto middle = names.begin() + static_cast<std::ptrdiff_t>(names.size() / 2);
        std::vector<std::string> unused = unusedOf({names.begin(), middle}, page);
        const std::vector<std::string> more = unusedOf({middle, names.end()}, page);
        unused.insert(unused.end(), more.begin(), more.end());
        return unused;
    }

    void addUnusedValues(const std::string& page) {
        constexpr std::size_t mostTried = 64;
        std::vector<std::string> candidates;
        for (const std::string& name : data_.names()) {
            if (!isRequested(name)) candidates.push_back(name);
        }
        const bool isTooMuch =
            candidates.size() > mostTried && !makesNoDifference(candidates, page);
        if (isTooMuch) return;
        const std::vector<std::string> unused = unusedOf(candidates, page);
        if (unused.empty()) return;
        findings_.add(tree_.atElement(
            tree_.root(), make(Severity::Note, "unused-value",
                               "the page does not use " + countText(unused.size(), "value") + ": " +
                                   joined(unused),
                               "")));
    }

    const TemplateTree& tree_;
    const std::vector<TemplateExpression>& expressions_;
    const std::string& text_;
    DataDocument data_;
    KeyDeclarations keys_;
    std::vector<ValueRequest> requests_;
    /// The elements that ask for a value which does not exist.
    std::set<const xmlNode*> inVain_;
    Findings findings_;
};

}  // namespace

Findings runFindings(const TemplateTree& tree, const TemplateRun& run) {
    return RunReport(tree, run).make();
}

Findings dataFindings(const TemplateTree& tree, const XsltNames& names,
                      const std::vector<TemplateExpression>& expressions,
                      const std::string& dataDocument) {
    return DataCheck(tree, names, expressions, dataDocument).check();
}

}  // namespace cli
