// Follows xsl:for-each and xsl:variable, so that names composed in a loop over a list are known.
//
// SPDX-License-Identifier: MIT
#include "templates/template_values.h"

#include <algorithm>
#include <map>
#include <set>

#include "base/suggestion.h"
#include "templates/value_hints.h"

namespace cli {
namespace {

class UseCollector {
public:
    UseCollector(const TemplateTree& tree, const XsltNames& names,
                 const std::vector<TemplateExpression>& expressions)
        : tree_(tree), keys_(keyDeclarations(names)), expressions_(expressions) {}

    std::vector<ValueUse> collect() {
        for (const TemplateExpression& one : expressions_) {
            if (isGlobal(one)) define(globals_, one);
        }
        for (const TemplateExpression& one : expressions_)
            read(one);
        return std::move(uses_);
    }

private:
    bool isGlobal(const TemplateExpression& one) const {
        return isXsltElement(one.element, "variable") && one.element->parent == tree_.root();
    }

    void read(const TemplateExpression& one) {
        if (topLevelOf(one.element) != topLevel_) {
            topLevel_ = topLevelOf(one.element);
            context_ = globals_;
        }
        context_.currentName = currentNameAt(one.element);
        for (const ValueRequest& request : valueRequests(one.text, one.kind, keys_, context_))
            add(one, request);
        if (one.attribute != "select") return;
        if (isXsltElement(one.element, "for-each"))
            loops_[one.element] = selectedName(one.text, keys_, context_);
        if (isXsltElement(one.element, "variable")) define(context_, one);
    }

    void add(const TemplateExpression& one, const ValueRequest& request) {
        const TextRange range = {request.offset, request.offset + request.length};
        const Finding place = tree_.atValue(one.element, one.attribute, range, {});
        uses_.push_back({request, &one, hintOfUse(one, request), place.position});
    }

    void define(ValueContext& context, const TemplateExpression& one) const {
        const std::string name = attributeText(one.element, "name");
        context.texts[name] = knownText(one.text, context);
        context.lists[name] = selectedName(one.text, keys_, context);
        if (context.texts[name].empty()) context.texts.erase(name);
    }

    const xmlNode* topLevelOf(const xmlNode* element) const {
        while (element->parent != nullptr && element->parent != tree_.root())
            element = element->parent;
        return element;
    }

    /// The name of the property that the innermost loop around the element visits.
    std::string currentNameAt(const xmlNode* element) const {
        for (const xmlNode* node = element->parent; node != nullptr; node = node->parent) {
            const auto loop = loops_.find(node);
            if (loop != loops_.end()) return loop->second;
        }
        return {};
    }

    const TemplateTree& tree_;
    KeyDeclarations keys_;
    const std::vector<TemplateExpression>& expressions_;
    ValueContext globals_;
    ValueContext context_;
    const xmlNode* topLevel_ = nullptr;
    std::map<const xmlNode*, std::string> loops_;
    std::vector<ValueUse> uses_;
};

bool startsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// "Err.10.Address" is a name of the list "Err.N.Address".
bool isOfList(const std::string& value, const std::string& list) {
    const std::size_t entry = entryPlace(list);
    if (entry == std::string::npos) return value == list;
    const std::string end = list.substr(entry + 1);
    return value.size() > entry + end.size() && startsWith(value, list.substr(0, entry)) &&
           endsWith(value, end);
}

bool isAskedForBy(const ValueRequest& request, const std::string& value) {
    switch (request.kind) {
        case ValueRequest::Kind::Name:
            return value == request.name;
        case ValueRequest::Kind::List:
            return isOfList(value, request.name);
        case ValueRequest::Kind::Prefix:
            return startsWith(value, request.name);
        case ValueRequest::Kind::Part:
            return endsWith(value, request.name);
    }
    return false;
}

bool isFound(const ValueRequest& request, const KeyDeclarations& keys,
             const std::vector<std::string>& values) {
    if (!request.key.empty() && !request.keyText.empty())
        return findsAny(keys, request.key, request.keyText, values);
    return std::any_of(values.begin(), values.end(), [&request](const std::string& value) {
        return isAskedForBy(request, value);
    });
}

/// The values as names of lists, too: "Err.10.Address" is "Err.N.Address".
std::vector<std::string> withLists(const std::vector<std::string>& values) {
    std::set<std::string> names(values.begin(), values.end());
    for (const std::string& value : values) {
        std::string list;
        for (const char letter : value) {
            const bool isDigit = letter >= '0' && letter <= '9';
            if (!isDigit)
                list += letter;
            else if (list.empty() || list.back() != 'N')
                list += 'N';
        }
        names.insert(list);
    }
    return {names.begin(), names.end()};
}

}  // namespace

KeyDeclarations keyDeclarations(const XsltNames& names) {
    KeyDeclarations keys;
    for (const auto& [name, element] : names.keys)
        keys.emplace(
            name, KeyDeclaration{attributeText(element, "match"), attributeText(element, "use")});
    return keys;
}

std::vector<ValueUse> valueUses(const TemplateTree& tree, const XsltNames& names,
                                const std::vector<TemplateExpression>& expressions) {
    return UseCollector(tree, names, expressions).collect();
}

std::vector<std::string> unusedValues(const std::vector<ValueUse>& uses,
                                      const std::vector<std::string>& values) {
    std::vector<std::string> unused;
    for (const std::string& value : values) {
        const bool isUsed = std::any_of(uses.begin(), uses.end(), [&value](const ValueUse& use) {
            return isAskedForBy(use.request, value);
        });
        if (!isUsed) unused.push_back(value);
    }
    return unused;
}

Findings missingValues(const TemplateTree& tree, const std::vector<ValueUse>& uses,
                       const KeyDeclarations& keys, const std::vector<std::string>& values) {
    const std::vector<std::string> candidates = withLists(unusedValues(uses, values));
    Findings findings;
    for (const ValueUse& use : uses) {
        if (use.request.kind == ValueRequest::Kind::Part || isFound(use.request, keys, values))
            continue;
        const std::string nearest = nearestWord(use.request.name, candidates);
        Finding finding;
        finding.severity = nearest.empty() ? Severity::Note : Severity::Warning;
        finding.code = "missing-value";
        finding.what = "no value \"" + use.request.name + "\"";
        if (!nearest.empty()) finding.advice = "did you mean \"" + nearest + "\"?";
        findings.add(tree.atValue(use.expression->element, use.expression->attribute,
                                  {use.request.offset, use.request.offset + use.request.length},
                                  std::move(finding)));
    }
    return findings;
}

}  // namespace cli
