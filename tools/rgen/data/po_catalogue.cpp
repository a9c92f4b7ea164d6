// Reads PO files: entries of keywords and quoted texts. Comments, contexts and flags are skipped;
// of plural forms the first is used.
//
// SPDX-License-Identifier: MIT
#include "data/po_catalogue.h"

#include <string_view>

#include "base/command_error.h"
#include "base/console.h"
#include "base/input_file.h"
#include "base/xml_text.h"
#include "data/xml_documents.h"

namespace cli {
namespace {

constexpr const char* pathHint = "check the path given to --lang";

class PoReader {
public:
    PoReader(const std::string& text, const std::string& path) : text_(text), path_(path) {
        if (text_.compare(0, 3, "\xEF\xBB\xBF") == 0) at_ = 3;
    }

    /// Reads up to the next keyword; returns false at the end.
    bool next() {
        for (;;) {
            skipBlanks();
            if (at_ == text_.size()) return false;
            if (text_[at_] != '#') break;
            at_ = std::min(text_.find('\n', at_), text_.size());
        }
        start_ = at_;
        keyword_ = readKeyword();
        value_ = readTexts();
        return true;
    }

    const std::string& keyword() const { return keyword_; }
    const std::string& value() const { return value_; }

    std::string placeOfKeyword() const { return placeText(path_, positionOf(text_, start_)); }
    [[noreturn]] void failAtKeyword(const std::string& message) const { fail(start_, message); }

private:
    [[noreturn]] void fail(std::size_t offset, const std::string& message) const {
        throw usageError(placeText(path_, positionOf(text_, offset)) + ": " + message,
                         "correct the catalogue");
    }

    void skipBlanks() { at_ = std::min(text_.find_first_not_of(" \t\r\n", at_), text_.size()); }

    std::string readKeyword() {
        const std::size_t end = std::min(text_.find_first_of(" \t\r\n\"", at_), text_.size());
        std::string word = text_.substr(at_, end - at_);
        if (word != "msgctxt" && word != "msgid" && word != "msgid_plural" && word != "msgstr" &&
            word.rfind("msgstr[", 0) != 0) {
            fail(at_, word.empty() ? "a text without a keyword"
                                   : "\"" + word + "\" is no keyword of a PO file");
        }
        at_ = end;
        return word;
    }

    std::string readTexts() {
        std::string value;
        skipBlanks();
        if (at_ == text_.size() || text_[at_] != '"') {
            fail(std::min(at_, text_.size()), "a text in quotes is expected behind " + keyword_);
        }
        while (at_ < text_.size() && text_[at_] == '"') {
            value += readText();
            skipBlanks();
        }
        return value;
    }

    std::string readText() {
        const std::size_t open = at_++;
        std::string value;
        while (at_ < text_.size() && text_[at_] != '"') {
            if (text_[at_] == '\n') fail(open, "the text has no closing quote on its line");
            value += text_[at_] == '\\' ? readEscape() : std::string(1, text_[at_++]);
        }
        if (at_ == text_.size()) fail(open, "the text has no closing quote");
        ++at_;
        return value;
    }

    std::string readEscape() {
        static constexpr std::string_view letters = "ntr\"\\abfv";
        static constexpr std::string_view meanings = "\n\t\r\"\\\a\b\f\v";
        const char letter = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
        const std::size_t known = letters.find(letter);
        if (letter == '\0' || known == std::string_view::npos) {
            fail(at_, "\"\\" + std::string(1, letter) + "\" is no escape sequence");
        }
        at_ += 2;
        return std::string(1, meanings[known]);
    }

    const std::string& text_;
    const std::string& path_;
    std::size_t at_ = 0;
    std::size_t start_ = 0;
    std::string keyword_;
    std::string value_;
};

/// Without markup in the original everything in the translation is escaped. If the original is not
/// well-formed itself (half of an element), the translation need not be either.
std::string wellFormedMarkup(const std::string& original, const std::string& translation,
                             const PoReader& reader) {
    std::string markup = translationContent(original, translation);
    if (original.find('<') == std::string::npos) return markup;
    const std::string mistake = mistakeInContent(markup);
    if (!mistake.empty() && mistakeInContent(original).empty()) {
        reader.failAtKeyword("the translation is not well-formed: " + mistake);
    }
    return markup;
}

/// The header is the translation of the empty text. Encodings other than UTF-8 are refused.
void checkHeader(const std::string& header, const PoReader& reader) {
    constexpr std::string_view mark = "charset=";
    const std::size_t at = header.find(mark);
    if (at == std::string::npos) return;
    const std::size_t start = at + mark.size();
    const std::string charset = header.substr(start, header.find_first_of(" \t\n;", start) - start);
    if (charset == "UTF-8" || charset == "utf-8" || charset == "CHARSET" || charset == "US-ASCII" ||
        charset == "ASCII") {
        return;
    }
    reader.failAtKeyword("the catalogue is in " + charset + " instead of UTF-8");
}

/// Such a character would make the template invalid XML, and only the author knows what was meant.
void requireFitCharacters(const std::string& translation, const PoReader& reader) {
    const std::string reason = invalidCharacterIn(translation);
    if (!reason.empty()) reader.failAtKeyword("the translation cannot be XML: " + reason);
}

}  // namespace

void PoCatalogue::addRaw(const std::string& original, const std::string& translation,
                         const std::string& place) {
    texts_[original] = translation;
    const std::string mistake = mistakeInContent(translation);
    if (mistake.empty()) return;
    if (mistakes_++ == 0) firstMistake_ = place + ": " + mistake;
}

void PoCatalogue::noteMistakes(Console& console) const {
    if (mistakes_ == 0) return;
    const char* const are = mistakes_ == 1 ? " translation is" : " translations are";
    console.note(
        std::to_string(mistakes_) + are +
        " not well-formed, and with --raw a part of the template may be lost: " + firstMistake_);
}

PoCatalogue::PoCatalogue(const std::string& path, bool raw, Console& console) : path_(path) {
    const std::string content = readInputFile(path, pathHint);
    if (!isPlainUtf8(content)) {
        throw usageError(path + ": the catalogue is not valid UTF-8", "convert it with msgconv");
    }
    PoReader reader(content, path);
    std::string original;
    bool hasOriginal = false;
    while (reader.next()) {
        const std::string& keyword = reader.keyword();
        if (keyword == "msgid") {
            original = reader.value();
            hasOriginal = true;
        } else if (keyword == "msgstr" || keyword == "msgstr[0]") {
            if (!hasOriginal) reader.failAtKeyword("msgstr without a msgid before it");
            const std::string& translation = reader.value();
            if (original.empty()) checkHeader(translation, reader);
            if (!original.empty() && !translation.empty()) {
                requireFitCharacters(translation, reader);
                if (raw) {
                    addRaw(original, translation, reader.placeOfKeyword());
                } else {
                    texts_[original] = wellFormedMarkup(original, translation, reader);
                }
            }
            hasOriginal = false;
        }
    }
    noteMistakes(console);
}

const std::string* PoCatalogue::find(const std::string& text) const {
    const auto found = texts_.find(text);
    return found == texts_.end() ? nullptr : &found->second;
}

const char* Translator::translate(const char* text, void* context) {
    auto& self = *static_cast<Translator*>(context);
    const std::string* const translation = self.catalogue_.find(text);
    if (translation != nullptr) return translation->c_str();
    if (self.seen_.insert(text).second) self.untranslated_.emplace_back(text);
    return text;
}

}  // namespace cli
