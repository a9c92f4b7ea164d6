// Checks the elements in the order in which the library reads them: config, reportTypes, type, two
// file names.
//
// SPDX-License-Identifier: MIT
#include "data/config_check.h"

#include <algorithm>
#include <cstdlib>
#include <map>

#include "base/console.h"
#include "base/suggestion.h"
#include "base/text_functions.h"
#include "data/xml_documents.h"
#include "data/xml_nodes.h"
#include "strata_repgenlib/rgen.hpp"

namespace cli {
namespace {

constexpr const char* guidAdvice =
    "write it as xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx with the digits 0-9 and a-f";

std::string inBrackets(const std::string& name) {
    return "<" + shortened(name) + ">";
}

std::string inQuotes(const std::string& text) {
    return "\"" + shortened(text) + "\"";
}

bool isElement(const xmlNode* node) {
    return node->type == XML_ELEMENT_NODE;
}

/// Says why the text is not a valid GUID.
std::string guidMistake(const std::string& guid) {
    const std::string subject = "the guid " + inQuotes(guid) + " ";
    const std::size_t bad = guid.find_first_not_of("0123456789abcdefABCDEF-");
    if (guid.empty()) return "the guid is empty";
    if (bad != std::string::npos) {
        const bool isBrace = guid[bad] == '{' || guid[bad] == '}';
        if (isBrace) return "write the GUID without braces";
        return subject + "has something else than hexadecimal digits and hyphens at character " +
               std::to_string(bad + 1);
    }
    if (guid.size() == 36) return subject + "has a hyphen missing, or in the wrong place";
    return subject + "has " + std::to_string(guid.size()) + " characters instead of 36";
}

class Check {
public:
    explicit Check(const std::string& path) : path_(path) {}

    void run() {
        checkForm();
        const XmlPtr<xmlDoc> document = readDocument(path_);
        xmlNode* const root = document ? xmlDocGetRootElement(document.get()) : nullptr;
        if (root != nullptr) checkRoot(root);
        std::stable_sort(
            mistakes_.begin(), mistakes_.end(),
            [](const auto& one, const auto& other) { return one.first < other.first; });
    }

    std::vector<ConfigMistake> mistakes() const {
        std::vector<ConfigMistake> all;
        for (const auto& [line, mistake] : mistakes_)
            all.push_back(mistake);
        return all;
    }

private:
    void add(long line, const std::string& text, const std::string& advice, bool isError = true) {
        const std::string place = path_ + ":" + std::to_string(line) + ": ";
        mistakes_.push_back({line, {place + text, advice, isError}});
    }

    void add(const xmlNode* node, const std::string& text, const std::string& advice,
             bool isError = true) {
        add(xmlGetLineNo(node), text, advice, isError);
    }

    /// The library reads a file that is not well-formed as far as possible.
    void checkForm() {
        const std::string damage = damageOf(path_);
        if (damage.empty()) return;
        const bool hasLine = damage.rfind("line ", 0) == 0;
        const std::size_t colon = hasLine ? damage.find(": ") : std::string::npos;
        const long line = hasLine ? std::strtol(damage.c_str() + 5, nullptr, 10) : 1;
        add(line, "not well-formed",
            "correct it: " + (colon == std::string::npos ? damage : damage.substr(colon + 2)) +
                "; until then the library takes what it can read");
    }

    /// False for an element whose name the library does not know.
    bool hasName(const xmlNode* node, const std::string& wanted) {
        const std::string name = nameOf(node->name);
        if (name != wanted) return false;
        if (node->ns == nullptr) return true;
        add(node, inBrackets(name) + " is in a namespace", "write it without xmlns and prefix");
        return false;
    }

    /// The children with this name. Others are mistakes if they look like a misspelt one or if
    /// there is no child of this name.
    std::vector<xmlNode*> children(xmlNode* parent, const std::string& wanted) {
        std::vector<xmlNode*> found;
        std::vector<xmlNode*> others;
        const std::size_t before = mistakes_.size();
        for (xmlNode* child = parent->children; child != nullptr; child = child->next) {
            if (isElement(child)) (hasName(child, wanted) ? found : others).push_back(child);
        }
        for (xmlNode* other : others) {
            const std::string name = nameOf(other->name);
            if (name == wanted || nearestWord(name, {wanted}).empty()) continue;
            add(other, inBrackets(name) + " is not known in " + inBrackets(nameOf(parent->name)),
                "write " + inBrackets(wanted));
        }
        if (found.empty() && mistakes_.size() == before) {
            add(parent,
                "there is no " + inBrackets(wanted) + " in " + inBrackets(nameOf(parent->name)),
                "write one as docs/file-formats.md shows it");
        }
        return found;
    }

    void checkRoot(xmlNode* root) {
        if (nameOf(root->name) != "config") {
            add(root, "the file begins with " + inBrackets(nameOf(root->name)), "write <config>");
            return;
        }
        if (!hasName(root, "config")) return;
        for (xmlNode* list : children(root, "reportTypes")) {
            for (xmlNode* type : children(list, "type"))
                checkType(type);
        }
    }

    void checkType(xmlNode* type) {
        checkGuid(type);
        for (const char* name : {"persistDataFile", "reportTypeFile"})
            checkFileName(type, name);
    }

    void checkGuid(xmlNode* type) {
        if (xmlHasNsProp(type, xmlText("guid"), nullptr) == nullptr) {
            if (xmlHasProp(type, xmlText("guid")) != nullptr) {
                add(type, "guid is in a namespace", "write it without prefix");
                return;
            }
            std::string other;
            for (const xmlAttr* each = type->properties; each != nullptr; each = each->next) {
                if (!nearestWord(nameOf(each->name), {"guid"}).empty()) other = nameOf(each->name);
            }
            add(type,
                other.empty() ? "this <type> has no guid"
                              : inQuotes(other) + " is not known in <type>",
                "write guid=\"xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx\"");
            return;
        }
        const std::string written = attribute(type, "guid");
        const auto parsed = strata::repgen::Guid::parse(written);
        const std::string guid = parsed ? parsed->text() : std::string();
        if (guid.size() != written.size() || guid.empty()) {
            add(type, guidMistake(written),
                guid.empty() ? guidAdvice : "write guid=\"" + guid + "\"");
            return;
        }
        const auto [known, isNew] = lines_.emplace(guid, xmlGetLineNo(type));
        if (isNew) return;
        add(type,
            "the guid " + guid + " is that of line " + std::to_string(known->second) + ", too",
            "of both the last file names count; give each type a guid of its own",
            /*isError=*/false);
    }

    /// The library accepts these two in any letter case.
    void checkFileName(xmlNode* type, const char* wanted) {
        xmlNode* found = nullptr;
        xmlNode* meant = nullptr;
        for (xmlNode* child = type->children; child != nullptr; child = child->next) {
            if (!isElement(child)) continue;
            if (xmlStrcasecmp(child->name, xmlText(wanted)) == 0) found = child;
            if (nearestWord(nameOf(child->name), {"persistDataFile", "reportTypeFile"}) == wanted) {
                meant = child;
            }
        }
        const std::string name = inBrackets(wanted);
        if (found == nullptr && meant != nullptr) {
            add(meant, inBrackets(nameOf(meant->name)) + " is not known in <type>",
                "write " + name);
        } else if (found == nullptr) {
            add(type, "this <type> has no " + name, "write " + name + "FILE</" + wanted + ">");
        } else if (trimmed(textInside(found)).empty()) {
            add(found, name + " is empty", "write the name of the file in it");
        }
    }

    const std::string& path_;
    std::vector<std::pair<long, ConfigMistake>> mistakes_;
    /// The line where each GUID occurred first.
    std::map<std::string, long> lines_;
};

}  // namespace

std::vector<ConfigMistake> configurationMistakes(const std::string& path) {
    Check check(path);
    check.run();
    return check.mistakes();
}

std::string firstMistake(const std::string& path) {
    for (const ConfigMistake& mistake : configurationMistakes(path)) {
        if (mistake.isError) return mistake.text + "; " + mistake.advice;
    }
    return {};
}

}  // namespace cli
