// Asks the XPath library: a document with one candidate name, and the expressions of the key. A key
// may compose its texts in any way for which one of the candidates fits.
//
// SPDX-License-Identifier: MIT
#include "templates/key_names.h"

#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <memory>

#include "data/xml_nodes.h"
#include "templates/xpath_tokens.h"

namespace cli {
namespace {

struct EvaluationFree {
    void operator()(xmlXPathContext* context) const { xmlXPathFreeContext(context); }
    void operator()(xmlXPathObject* object) const { xmlXPathFreeObject(object); }
};
template <typename T>
using EvaluationPtr = std::unique_ptr<T, EvaluationFree>;

void discardError(void*, const xmlError*) {}

XmlPtr<xmlDoc> documentWith(const std::vector<std::string>& names) {
    XmlPtr<xmlDoc> document(xmlNewDoc(xmlText("1.0")));
    xmlNode* const data = xmlNewDocNode(document.get(), nullptr, xmlText("data"), nullptr);
    xmlDocSetRootElement(document.get(), data);
    xmlNode* const list = xmlNewChild(data, nullptr, xmlText("properties"), nullptr);
    for (const std::string& name : names) {
        xmlNode* const property = xmlNewChild(list, nullptr, xmlText("property"), xmlText("1"));
        xmlNewProp(property, xmlText("name"), xmlText(name.c_str()));
    }
    return document;
}

class KeyTable {
public:
    explicit KeyTable(const std::vector<std::string>& names)
        : document_(documentWith(names)), context_(xmlXPathNewContext(document_.get())) {
        context_->error = discardError;
    }

    bool finds(const KeyDeclaration& key, const std::string& text) {
        context_->node = reinterpret_cast<xmlNode*>(document_.get());
        const std::string all = key.match.substr(0, 1) == "/" ? key.match : "//" + key.match;
        const auto nodes = evaluate(all);
        if (!nodes || nodes->type != XPATH_NODESET || nodes->nodesetval == nullptr) {
            isUnknown_ = isUnknown_ || !nodes;
            return false;
        }
        for (int i = 0; i < nodes->nodesetval->nodeNr; ++i) {
            context_->node = nodes->nodesetval->nodeTab[i];
            if (usesText(key.use, text)) return true;
        }
        return false;
    }

    /// An expression could not be evaluated here.
    bool isUnknown() const { return isUnknown_; }

private:
    EvaluationPtr<xmlXPathObject> evaluate(const std::string& expression) {
        return EvaluationPtr<xmlXPathObject>(
            xmlXPathEvalExpression(xmlText(expression.c_str()), context_.get()));
    }

    /// Nodes are compared one by one, anything else as a text.
    bool usesText(const std::string& use, const std::string& text) {
        const auto value = evaluate(use);
        isUnknown_ = isUnknown_ || !value;
        if (!value) return false;
        if (value->type != XPATH_NODESET)
            return plainText(XmlPtr<xmlChar>(xmlXPathCastToString(value.get()))) == text;
        const xmlNodeSet* const nodes = value->nodesetval;
        for (int i = 0; nodes != nullptr && i < nodes->nodeNr; ++i) {
            if (plainText(XmlPtr<xmlChar>(xmlXPathCastNodeToString(nodes->nodeTab[i]))) == text)
                return true;
        }
        return false;
    }

    XmlPtr<xmlDoc> document_;
    EvaluationPtr<xmlXPathContext> context_;
    bool isUnknown_ = false;
};

bool finds(const KeyDeclaration& key, const std::string& text, const std::string& name) {
    return KeyTable({name}).finds(key, text);
}

bool isPartOfName(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9') || letter == '.' || letter == '-' || letter == '_' ||
           static_cast<unsigned char>(letter) >= 0x80;
}

/// "Err*Address" with ".7." is "Err.7.Address"; empty when the text has no such place.
std::string withEntry(const std::string& text, const std::string& entry) {
    std::string name;
    bool isReplaced = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isPartOfName(text[i])) {
            name += text[i];
        } else if (i == 0 || isPartOfName(text[i - 1])) {
            name += entry;
            isReplaced = true;
        }
    }
    return isReplaced ? name : std::string();
}

/// A list whose entries are written between `before` and `after`.
std::optional<KeyTarget> listOf(const KeyDeclaration& key, const std::string& text,
                                const std::string& before, const std::string& after) {
    const auto entry = [&before, &after](const char* number) {
        return std::string(before).append(number).append(after);
    };
    const std::string name = withEntry(text, entry("7"));
    if (name.empty() || !finds(key, text, name)) return std::nullopt;
    return KeyTarget{KeyTarget::Kind::List, withEntry(text, entry("N"))};
}

std::optional<KeyTarget> targetOf(const KeyDeclaration& key, const std::string& text) {
    if (finds(key, text, text)) return KeyTarget{KeyTarget::Kind::Name, text};
    for (const char* const separator : {".", "", "-", "_"}) {
        for (const char* const after : {separator, ""}) {
            if (auto list = listOf(key, text, separator, after)) return list;
        }
        const std::string start = text + separator;
        if (start == text) continue;
        const std::string first = start + "7";
        const std::string inside = std::string(first).append(separator).append("A");
        if (finds(key, text, first) || finds(key, text, inside))
            return KeyTarget{KeyTarget::Kind::Prefix, start};
    }
    return std::nullopt;
}

/// The common case, without a document.
bool isName(const std::string& use) {
    const std::vector<Token> tokens = tokensOf(use);
    return tokens.size() == 2 && tokens[0].is("@") && tokens[1].is("name");
}

}  // namespace

std::size_t entryPlace(const std::string& list) {
    const auto isWord = [&list](std::size_t at) {
        return at < list.size() && list[at] != '.' && isPartOfName(list[at]);
    };
    for (std::size_t i = list.find('N'); i != std::string::npos; i = list.find('N', i + 1)) {
        const bool isAlone = (i == 0 || !isWord(i - 1)) && !isWord(i + 1);
        if (isAlone) return i;
    }
    return std::string::npos;
}

std::optional<KeyTarget> targetOfKey(const KeyDeclarations& keys, const std::string& key,
                                     const std::string& text) {
    const auto [begin, end] = keys.equal_range(key);
    for (auto one = begin; one != end; ++one) {
        if (isName(one->second.use)) return KeyTarget{KeyTarget::Kind::Name, text};
        if (auto target = targetOf(one->second, text)) return target;
    }
    return std::nullopt;
}

bool findsAny(const KeyDeclarations& keys, const std::string& key, const std::string& text,
              const std::vector<std::string>& names) {
    const auto [begin, end] = keys.equal_range(key);
    KeyTable table(names);
    for (auto one = begin; one != end; ++one) {
        if (table.finds(one->second, text)) return true;
    }
    return table.isUnknown();
}

}  // namespace cli
