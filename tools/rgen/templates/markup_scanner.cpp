// SPDX-License-Identifier: MIT
#include "templates/markup_scanner.h"

#include <algorithm>
#include <set>

#include "templates/character_references.h"

namespace cli {
namespace {

constexpr std::string_view blanks = " \t\r\n";

bool isBlank(char character) {
    return blanks.find(character) != std::string_view::npos;
}

/// Bytes above 0x7F belong to letters here: what XML does not allow among them, the parser says.
bool beginsName(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte >= 0x80 || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           byte == '_' || byte == ':';
}

bool continuesName(char character) {
    return beginsName(character) || (character >= '0' && character <= '9') || character == '-' ||
           character == '.';
}

std::string quoted(std::string_view name) {
    return "\"" + std::string(name) + "\"";
}

class Scanner {
public:
    explicit Scanner(std::string_view text) : text_(text) {}

    Markup scan() {
        if (startsWith("\xEF\xBB\xBF")) at_ = 3;
        while (at_ < text_.size()) {
            if (text_[at_] == '<') {
                readMarkup();
            } else {
                readText();
            }
        }
        reportOpenElements();
        std::stable_sort(markup_.problems.begin(), markup_.problems.end(),
                         [](const MarkupProblem& one, const MarkupProblem& other) {
                             return one.range.begin < other.range.begin;
                         });
        return std::move(markup_);
    }

private:
    bool startsWith(std::string_view expected) const {
        return text_.substr(at_, expected.size()) == expected;
    }

    void addProblem(TextRange range, const char* code, std::string what, std::string advice) {
        markup_.problems.push_back({range, code, std::move(what), std::move(advice)});
    }

    std::size_t lineOf(std::size_t offset) const {
        const auto end = text_.begin() + static_cast<std::ptrdiff_t>(offset);
        return 1 + static_cast<std::size_t>(std::count(text_.begin(), end, '\n'));
    }

    void readMarkup() {
        if (startsWith("<!--")) return readComment();
        if (startsWith("<![CDATA["))
            return readUpTo(9, "]]>", "CDATA section", markup_.cdataSections);
        if (startsWith("<?")) return readUpTo(2, "?>", "instruction", markup_.instructions);
        if (startsWith("<!DOCTYPE")) return readDoctype();
        if (startsWith("</")) return readEndTag();
        if (at_ + 1 < text_.size() && beginsName(text_[at_ + 1])) return readStartTag();
        addProblem({at_, at_ + 1}, "plain-less-than", "\"<\" begins a tag", "write \"&lt;\"");
        ++at_;
    }

    void readUpTo(std::size_t startSize, std::string_view end, const char* kind,
                  std::vector<TextRange>& ranges) {
        const std::size_t begin = at_;
        const std::size_t found = text_.find(end, at_ + startSize);
        if (found == std::string_view::npos) {
            addProblem({begin, begin + startSize}, "unclosed-markup",
                       "the file ends inside this " + std::string(kind),
                       "close it with " + quoted(end));
            at_ = text_.size();
            fileEndsInside_ = true;
        } else {
            at_ = found + end.size();
        }
        ranges.push_back({begin, at_});
    }

    void readComment() {
        const std::size_t begin = at_;
        at_ += 2;
        const std::size_t dashes = text_.find("--", begin + 4);
        at_ = begin;
        readUpTo(4, "-->", "comment", markup_.comments);
        const bool isClosed = !fileEndsInside_;
        if (isClosed && dashes != std::string_view::npos && dashes + 3 < at_) {
            addProblem({dashes, dashes + 2}, "dashes-in-comment",
                       "a comment must not contain \"--\"", "write a single dash");
        }
    }

    /// Declarations are left to the parser; here only their end counts.
    void readDoctype() {
        const std::size_t begin = at_;
        bool isInSubset = false;
        char quote = '\0';
        for (; at_ < text_.size(); ++at_) {
            const char character = text_[at_];
            if (quote != '\0') {
                if (character == quote) quote = '\0';
            } else if (startsWith("<!--")) {
                at_ = std::min(text_.find("-->", at_), text_.size() - 1);
            } else if (character == '"' || character == '\'') {
                quote = character;
            } else if (character == '[' || character == ']') {
                isInSubset = character == '[';
            } else if (character == '>' && !isInSubset) {
                break;
            }
        }
        at_ = std::min(at_ + 1, text_.size());
        markup_.doctype = {begin, at_};
        collectEntities(text_.substr(begin, at_ - begin));
    }

    void collectEntities(std::string_view declarations) {
        constexpr std::string_view start = "<!ENTITY";
        for (std::size_t at = declarations.find(start); at != std::string_view::npos;
             at = declarations.find(start, at + 1)) {
            std::size_t begin = declarations.find_first_not_of(blanks, at + start.size());
            if (begin == std::string_view::npos) return;
            const std::size_t end = declarations.find_first_of(blanks, begin);
            entities_.emplace(declarations.substr(begin, end - begin));
        }
    }

    void readText() {
        const std::size_t end = std::min(text_.find('<', at_), text_.size());
        const std::size_t first = text_.find_first_not_of(blanks, at_);
        if (open_.empty() && first < end) {
            const bool isBeforeRoot = markup_.elements.empty();
            std::size_t last = text_.find_last_not_of(blanks, end - 1);
            last = std::min(last, std::min(text_.find('\n', first), last + 1) - 1);
            addProblem({first, last + 1}, "text-outside-root",
                       isBeforeRoot ? "text before the first element"
                                    : "text after the end of the root element",
                       "remove it");
        }
        checkReferences({at_, end});
        const std::size_t stray = text_.substr(at_, end - at_).find("]]>");
        if (stray != std::string_view::npos) {
            addProblem({at_ + stray, at_ + stray + 3}, "cdata-end",
                       "\"]]>\" ends a CDATA section that was not begun", "write \"]]&gt;\"");
        }
        at_ = end;
    }

    void checkReferences(TextRange range) {
        for (std::size_t at = text_.find('&', range.begin); at < range.end;
             at = text_.find('&', at + 1)) {
            const ReferenceMistake mistake =
                mistakeInReference(text_.substr(at, range.end - at), entities_);
            if (mistake.length > 0)
                addProblem({at, at + mistake.length}, mistake.code, mistake.what, mistake.advice);
        }
    }

    std::string_view readName() {
        const std::size_t begin = at_;
        while (at_ < text_.size() && continuesName(text_[at_]))
            ++at_;
        return text_.substr(begin, at_ - begin);
    }

    void skipBlanks() { at_ = std::min(text_.find_first_not_of(blanks, at_), text_.size()); }

    void readStartTag() {
        MarkupElement element;
        element.startTag.begin = at_++;
        element.nameRange.begin = at_;
        element.name = std::string(readName());
        element.nameRange.end = at_;
        element.parent = open_.empty() ? noElement : open_.back();
        if (open_.empty() && !markup_.elements.empty()) {
            addProblem({element.startTag.begin, at_}, "second-root",
                       "\"" + element.name + "\" after the end of the root element",
                       "move it into the root element");
        }
        readAttributes(element);
        const bool isEmpty = startsWith("/>");
        finishStartTag(element, isEmpty);
        markup_.elements.push_back(std::move(element));
        if (!isEmpty) open_.push_back(markup_.elements.size() - 1);
    }

    void finishStartTag(MarkupElement& element, bool isEmpty) {
        if (isEmpty || startsWith(">")) {
            at_ += isEmpty ? 2 : 1;
        } else {
            addProblem({element.startTag.begin, element.nameRange.end}, "unclosed-tag",
                       "the tag of \"" + element.name + "\" has no \">\"",
                       at_ < text_.size() ? "close it before the next tag" : "close it");
        }
        element.startTag.end = at_;
    }

    void readAttributes(MarkupElement& element) {
        for (;;) {
            const std::size_t before = at_;
            skipBlanks();
            if (at_ == text_.size() || text_[at_] == '>' || text_[at_] == '<' || startsWith("/>"))
                return;
            if (!beginsName(text_[at_])) {
                addProblem({at_, at_ + 1}, "stray-character",
                           "\"" + std::string(text_.substr(at_, 1)) + "\" inside the tag of \"" +
                               element.name + "\"",
                           "remove it, or close the tag before it");
                ++at_;
                continue;
            }
            if (at_ == before) {
                addProblem({at_, at_ + 1}, "missing-blank", "no blank before this attribute",
                           "write one");
            }
            readAttribute(element);
        }
    }

    void readAttribute(MarkupElement& element) {
        MarkupAttribute attribute;
        attribute.nameRange.begin = at_;
        attribute.name = std::string(readName());
        attribute.nameRange.end = at_;
        skipBlanks();
        if (!startsWith("=")) {
            addProblem(attribute.nameRange, "missing-value",
                       "attribute " + quoted(attribute.name) + " has no value",
                       "write " + attribute.name + "=\"...\"");
            at_ = attribute.nameRange.end;
            return;
        }
        ++at_;
        skipBlanks();
        if (!readValue(attribute)) return;
        if (element.find(attribute.name) != nullptr) {
            addProblem(attribute.nameRange, "duplicate-attribute",
                       "attribute " + quoted(attribute.name) + " is written twice", "remove one");
            return;
        }
        element.attributes.push_back(std::move(attribute));
    }

    bool readValue(MarkupAttribute& attribute) {
        if (at_ == text_.size() || (text_[at_] != '"' && text_[at_] != '\'')) {
            addProblem(attribute.nameRange, "missing-quotes",
                       "the value of attribute " + quoted(attribute.name) + " has no quotes",
                       "write " + attribute.name + "=\"...\"");
            at_ = std::min(text_.find_first_of(" \t\r\n<>", at_), text_.size());
            return false;
        }
        attribute.quote = text_[at_++];
        const std::size_t close = text_.find(attribute.quote, at_);
        const std::size_t lessThan = text_.find('<', at_);
        if (close == std::string_view::npos) {
            addProblem({at_ - 1, at_}, "unclosed-value",
                       "the value of attribute " + quoted(attribute.name) + " has no closing quote",
                       "write it");
            at_ = std::min(std::min(lessThan, text_.find('\n', at_)), text_.size());
            return false;
        }
        if (lessThan < close) {
            addProblem({lessThan, lessThan + 1}, "less-than-in-value",
                       "\"<\" in the value of attribute " + quoted(attribute.name),
                       "write \"&lt;\", or close the value before it");
        }
        attribute.valueRange = {at_, close};
        checkReferences(attribute.valueRange);
        at_ = close + 1;
        return true;
    }

    void readEndTag() {
        const std::size_t begin = at_;
        at_ += 2;
        const std::string name(readName());
        skipBlanks();
        const TextRange range{begin, at_ + (startsWith(">") ? 1 : 0)};
        if (!startsWith(">")) {
            addProblem({begin, at_}, "unclosed-tag", "the tag \"</" + name + "\" has no \">\"",
                       "close it");
        }
        at_ = range.end;
        closeElement(name, range);
    }

    void closeElement(const std::string& name, TextRange tag) {
        const auto opened = std::find_if(
            open_.rbegin(), open_.rend(),
            [this, &name](std::size_t index) { return markup_.elements[index].name == name; });
        if (opened == open_.rend()) return reportUnexpectedEnd(name, tag);
        while (markup_.elements[open_.back()].name != name) {
            const MarkupElement& element = markup_.elements[open_.back()];
            addProblem(tag, "unclosed-element",
                       "\"" + element.name + "\" (line " +
                           std::to_string(lineOf(element.startTag.begin)) +
                           ") is not closed before </" + name + ">",
                       "what follows was repaired or lost");
            open_.pop_back();
        }
        markup_.elements[open_.back()].endTag = tag;
        open_.pop_back();
    }

    void reportUnexpectedEnd(const std::string& name, TextRange tag) {
        if (open_.empty()) {
            addProblem(tag, "unexpected-end-tag", "</" + name + "> closes nothing", "remove it");
            return;
        }
        const MarkupElement& element = markup_.elements[open_.back()];
        addProblem(tag, "unexpected-end-tag",
                   "</" + name + "> does not close \"" + element.name + "\" (line " +
                       std::to_string(lineOf(element.startTag.begin)) + ")",
                   "write </" + element.name + ">, or remove it");
        // A misspelt name was most probably meant to close the innermost element.
        if (isMisspelling(name, element.name)) open_.pop_back();
    }

    static bool isMisspelling(const std::string& written, const std::string& meant) {
        std::string sorted(written);
        std::string other(meant);
        std::sort(sorted.begin(), sorted.end());
        std::sort(other.begin(), other.end());
        return sorted == other || written.rfind(meant, 0) == 0 || meant.rfind(written, 0) == 0;
    }

    void reportOpenElements() {
        if (open_.empty() || fileEndsInside_) return;
        const MarkupElement& element = markup_.elements[open_.back()];
        addProblem({text_.find_last_not_of(blanks) + 1, text_.size()}, "unclosed-element",
                   "the file ends inside \"" + element.name + "\"",
                   "\"" + element.name + "\" (line " +
                       std::to_string(lineOf(element.startTag.begin)) + ") is not closed");
    }

    std::string_view text_;
    std::size_t at_ = 0;
    bool fileEndsInside_ = false;
    std::vector<std::size_t> open_;
    std::set<std::string, std::less<>> entities_;
    Markup markup_;
};

}  // namespace

const MarkupAttribute* MarkupElement::find(std::string_view attribute) const {
    for (const MarkupAttribute& one : attributes) {
        if (one.name == attribute) return &one;
    }
    return nullptr;
}

Markup scanMarkup(std::string_view text) {
    return Scanner(text).scan();
}

AttributeValue::AttributeValue(std::string_view text, TextRange valueRange) {
    for (std::size_t at = valueRange.begin; at < valueRange.end;) {
        const DecodedReference reference = decodeReference(text.substr(at, valueRange.end - at));
        // A parser turns white space in attributes into blanks.
        const std::string decoded = reference.length > 0 ? reference.text
                                    : isBlank(text[at])  ? " "
                                                         : std::string(1, text[at]);
        text_ += decoded;
        offsets_.insert(offsets_.end(), decoded.size(), at);
        at += std::max<std::size_t>(1, reference.length);
    }
    offsets_.push_back(valueRange.end);
}

std::size_t AttributeValue::offset(std::size_t at) const {
    return offsets_[std::min(at, offsets_.size() - 1)];
}

}  // namespace cli
