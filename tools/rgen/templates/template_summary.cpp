// SPDX-License-Identifier: MIT
#include "templates/template_summary.h"

#include <algorithm>
#include <map>

#include "base/command_error.h"
#include "templates/template_values.h"
#include "templates/xpath_names.h"
#include "templates/xpath_tokens.h"

namespace cli {
namespace {

void addPlace(Places& places, const TextPosition& position) {
    const bool isKnown = std::any_of(places.begin(), places.end(), [&](const TextPosition& one) {
        return one.line == position.line && one.column == position.column;
    });
    if (!isKnown) places.push_back(position);
}

std::vector<ValueSummary> valuesOf(const std::vector<ValueUse>& uses) {
    std::map<std::pair<std::string, ValueRequest::Kind>, ValueSummary> values;
    for (const ValueUse& use : uses) {
        ValueSummary& value = values[{use.request.name, use.request.kind}];
        value.kind = use.request.kind;
        value.name = use.request.name;
        // A guess that says more than "a number" wins.
        if (value.hint.empty() || value.hint == "int") {
            if (!use.hint.empty()) value.hint = use.hint;
        }
        addPlace(value.places, use.position);
    }
    std::vector<ValueSummary> all;
    all.reserve(values.size());
    for (auto& [name, value] : values)
        all.push_back(std::move(value));
    return all;
}

class Summarizer {
public:
    explicit Summarizer(const TemplateTree& tree)
        : tree_(tree), names_(collectNames(tree)), expressions_(expressionsOf(tree, names_)) {}

    TemplateSummary summarize() {
        readOutput();
        summary_.values = valuesOf(valueUses(tree_, names_, expressions_));
        for (const auto& [name, element] : names_.keys)
            addKey(name, element);
        std::sort(summary_.keys.begin(), summary_.keys.end(),
                  [](const KeySummary& one, const KeySummary& other) {
                      return one.position.line < other.position.line;
                  });
        for (const TemplateText::Replacement& replacement : tree_.text().replacements()) {
            const TranslationMarker& marker = replacement.marker;
            addText(summary_.texts, marker.message,
                    tree_.text().lines().position(marker.messageBegin));
        }
        for (const TemplateExpression& one : expressions_)
            readExpression(one);
        return std::move(summary_);
    }

private:
    void readOutput() {
        for (xmlNode* node = elementFrom(tree_.root()->children); node != nullptr;
             node = elementFrom(node->next)) {
            if (!isXsltElement(node, "output")) continue;
            const std::string method = attributeText(node, "method");
            const std::string encoding = attributeText(node, "encoding");
            if (!method.empty()) summary_.method = method;
            if (!encoding.empty()) summary_.encoding = encoding;
        }
    }

    void addKey(const std::string& name, const xmlNode* element) {
        KeySummary key;
        key.name = name;
        key.match = attributeText(element, "match");
        key.use = attributeText(element, "use");
        key.position = tree_.atElement(element, {}).position;
        summary_.keys.push_back(std::move(key));
    }

    static void addText(std::vector<TextSummary>& texts, const std::string& text,
                        const TextPosition& position) {
        const auto known =
            std::find_if(texts.begin(), texts.end(),
                         [&text](const TextSummary& one) { return one.text == text; });
        if (known == texts.end())
            texts.push_back({text, {position}});
        else
            addPlace(known->places, position);
    }

    void readExpression(const TemplateExpression& one) {
        if (one.kind != ExpressionKind::ValueTemplate) return readCalls(one, one.text, 0);
        for (const EmbeddedExpression& part : readValueTemplate(one.text).expressions)
            readCalls(one, part.text, part.offset);
    }

    void readCalls(const TemplateExpression& one, std::string_view expression, std::size_t offset) {
        const std::vector<Token> tokens = tokensOf(expression);
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            if (tokens[i].kind != TokenKind::Function) continue;
            const bool isKey = tokens[i].is("key");
            const bool isFormat = tokens[i].is("format-number");
            const Token* const text =
                isKey || isFormat ? textArgument(tokens, i, isKey ? 0 : 1) : nullptr;
            if (text == nullptr) continue;
            const TextRange range = {offset + text->offset, offset + text->end()};
            const TextPosition position =
                tree_.atValue(one.element, one.attribute, range, {}).position;
            const std::string name(literalText(*text));
            if (isKey)
                addUseOfKey(name, position);
            else
                addText(summary_.numberFormats, name, position);
        }
    }

    void addUseOfKey(const std::string& name, const TextPosition& position) {
        for (KeySummary& key : summary_.keys) {
            if (key.name == name) addPlace(key.places, position);
        }
    }

    const TemplateTree& tree_;
    XsltNames names_;
    std::vector<TemplateExpression> expressions_;
    TemplateSummary summary_;
};

}  // namespace

TemplateSummary summaryOf(const TemplateText& text) {
    const TemplateTree tree(text);
    if (tree.root() == nullptr) {
        throw CommandError(ExitCode::Findings, "\"" + text.path() + "\" is not well-formed XML",
                           "\"rgen check\" says where");
    }
    return Summarizer(tree).summarize();
}

}  // namespace cli
