// Reads entries of keywords and quoted texts. Comments belong to the entry after them. The keywords
// of obsolete entries are in comments that begin with "#~"; this mark is treated as a blank.
//
// SPDX-License-Identifier: MIT
#include "data/po_file.h"

#include <algorithm>
#include <string_view>

#include "base/text_functions.h"

namespace cli {
namespace {

constexpr std::string_view escapeLetters = "ntr\"\\abfv";
constexpr std::string_view escapeMeanings = "\n\t\r\"\\\a\b\f\v";
/// File names with blanks in references are between these marks of writing direction.
constexpr std::string_view isolateBegin = "\xE2\x81\xA8";
constexpr std::string_view isolateEnd = "\xE2\x81\xA9";

std::vector<std::string> wordsOf(const std::string& line) {
    std::vector<std::string> words;
    std::string word;
    bool isIsolated = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const std::string_view rest = std::string_view(line).substr(i);
        if (rest.substr(0, isolateBegin.size()) == isolateBegin) isIsolated = true;
        if (rest.substr(0, isolateEnd.size()) == isolateEnd) isIsolated = false;
        if (line[i] != ' ' || isIsolated) {
            word += line[i];
        } else if (!word.empty()) {
            words.push_back(std::move(word));
            word.clear();
        }
    }
    if (!word.empty()) words.push_back(std::move(word));
    return words;
}

class PoReader {
public:
    explicit PoReader(const std::string& text) : text_(text) {
        if (text_.compare(0, 3, "\xEF\xBB\xBF") == 0) at_ = 3;
    }

    PoFile read() {
        while (skipToKeyword()) {
            const std::size_t start = at_;
            const bool isObsolete = isObsolete_;
            try {
                readStatement(isObsolete);
            } catch (const PoMistake&) {
                if (!isObsolete) throw;
                dropEntry();
                at_ = start;
                at_ = endOfLine();
            }
        }
        finishEntry();
        file_.lastComments = std::move(pending_.comments);
        return std::move(file_);
    }

private:
    [[noreturn]] static void fail(std::size_t offset, const std::string& message) {
        throw PoMistake(offset, message);
    }

    std::size_t endOfLine() const { return std::min(text_.find('\n', at_), text_.size()); }

    bool isAt(std::string_view expected) const {
        return text_.compare(at_, expected.size(), expected) == 0;
    }

    /// Skips blanks, and the mark of an obsolete line.
    void skipBlanks() {
        for (;;) {
            const std::size_t next =
                std::min(text_.find_first_not_of(" \t\r\n", at_), text_.size());
            if (text_.find('\n', at_) < next) isObsolete_ = false;
            at_ = next;
            if (!isAt("#~") || isAt("#~|")) return;
            isObsolete_ = true;
            at_ += 2;
        }
    }

    bool skipToKeyword() {
        for (;;) {
            skipBlanks();
            if (at_ == text_.size()) return false;
            if (text_[at_] != '#') return true;
            readComment();
        }
    }

    void readComment() {
        std::string line = text_.substr(at_, endOfLine() - at_);
        at_ = endOfLine();
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const auto rest = [&line](std::size_t mark) { return trimmed(line.substr(mark)); };
        if (line.compare(0, 2, "#.") == 0) {
            pending_.extracted.push_back(rest(2));
        } else if (line.compare(0, 2, "#:") == 0) {
            for (std::string& reference : wordsOf(rest(2)))
                pending_.references.push_back(std::move(reference));
        } else if (line.compare(0, 2, "#,") == 0) {
            for (const std::string& flag : split(rest(2), ','))
                pending_.flags.push_back(trimmed(flag));
        } else if (line.compare(0, 2, "#|") == 0 || line.compare(0, 3, "#~|") == 0) {
            pending_.previous.push_back(rest(line.find('|') + 1));
        } else {
            pending_.comments.push_back(line);
        }
    }

    void readStatement(bool isObsolete) {
        const std::size_t start = at_;
        const std::string keyword = readKeyword();
        if (keyword == "msgctxt" || (keyword == "msgid" && !expectsId_)) beginEntry(isObsolete);
        places_.clear();
        const std::string value = readTexts(keyword);
        expectsId_ = keyword == "msgctxt";
        if (keyword == "msgctxt") {
            entry_.context = value;
        } else if (keyword == "msgid") {
            entry_.id = value;
            entry_.idOffset = start;
            expectsTranslation_ = true;
        } else if (keyword == "msgid_plural") {
            entry_.plural = value;
        } else {
            addTranslation(keyword, start, value);
        }
    }

    void addTranslation(const std::string& keyword, std::size_t start, const std::string& value) {
        const bool isFirst = keyword == "msgstr" || keyword == "msgstr[0]";
        if (isFirst && !expectsTranslation_) fail(start, "msgstr without a msgid before it");
        if (isFirst) {
            entry_.translationOffset = start;
            entry_.translationPlaces = std::move(places_);
        }
        expectsTranslation_ = false;
        entry_.translations.push_back(value);
    }

    void beginEntry(bool isObsolete) {
        finishEntry();
        entry_ = std::move(pending_);
        pending_ = PoEntry();
        entry_.isObsolete = isObsolete;
        hasEntry_ = true;
        expectsTranslation_ = false;
    }

    void finishEntry() {
        if (hasEntry_) file_.entries.push_back(std::move(entry_));
        hasEntry_ = false;
    }

    void dropEntry() {
        hasEntry_ = false;
        expectsId_ = false;
        expectsTranslation_ = false;
    }

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

    std::string readTexts(const std::string& keyword) {
        std::string value;
        skipBlanks();
        if (at_ == text_.size() || text_[at_] != '"') {
            fail(std::min(at_, text_.size()), "a text in quotes is expected after " + keyword);
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
            places_.push_back(at_);
            value += text_[at_] == '\\' ? readEscape() : text_[at_++];
        }
        if (at_ == text_.size()) fail(open, "the text has no closing quote");
        ++at_;
        return value;
    }

    char readEscape() {
        const char letter = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
        const std::size_t known = escapeLetters.find(letter);
        if (letter == '\0' || known == std::string_view::npos) {
            fail(at_, "\"\\" + std::string(1, letter) + "\" is no escape sequence");
        }
        at_ += 2;
        return escapeMeanings[known];
    }

    const std::string& text_;
    std::size_t at_ = 0;
    bool isObsolete_ = false;
    bool hasEntry_ = false;
    bool expectsId_ = false;
    bool expectsTranslation_ = false;
    std::vector<std::size_t> places_;
    /// The comments since the last statement.
    PoEntry pending_;
    PoEntry entry_;
    PoFile file_;
};

std::string quoted(std::string_view text) {
    std::string literal = "\"";
    for (const char byte : text) {
        const std::size_t known = byte == '\0' ? std::string_view::npos : escapeMeanings.find(byte);
        if (known == std::string_view::npos) {
            literal += byte;
        } else {
            literal += {'\\', escapeLetters[known]};
        }
    }
    return literal + "\"";
}

/// Texts of several lines begin with an empty one, so that their lines are below each other.
std::string statement(const std::string& start, const std::string& keyword,
                      const std::string& text) {
    std::string lines = start + keyword + " ";
    const std::size_t firstEnd = text.find('\n');
    if (firstEnd == std::string::npos || firstEnd + 1 == text.size()) {
        return lines + quoted(text) + "\n";
    }
    lines += "\"\"\n";
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
        lines += start + quoted(std::string_view(text).substr(at, end - at)) + "\n";
        at = end;
    }
    return lines;
}

std::string commentLines(const std::string& mark, const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line.empty() ? mark + "\n" : mark + " " + line + "\n";
    return text;
}

std::string translationLines(const std::string& start, const PoEntry& entry) {
    if (!entry.plural) {
        return statement(start, "msgstr", entry.translations.empty() ? "" : entry.translations[0]);
    }
    std::string lines;
    for (std::size_t i = 0; i < std::max<std::size_t>(1, entry.translations.size()); ++i) {
        lines += statement(start, "msgstr[" + std::to_string(i) + "]",
                           i < entry.translations.size() ? entry.translations[i] : "");
    }
    return lines;
}

std::string entryText(const PoEntry& entry) {
    const std::string start = entry.isObsolete ? "#~ " : "";
    std::string text;
    for (const std::string& comment : entry.comments)
        text += comment + "\n";
    text += commentLines("#.", entry.extracted) + commentLines("#:", entry.references);
    if (!entry.flags.empty()) text += "#, " + joined(entry.flags) + "\n";
    text += commentLines(entry.isObsolete ? "#~|" : "#|", entry.previous);
    if (entry.context) text += statement(start, "msgctxt", *entry.context);
    text += statement(start, "msgid", entry.id);
    if (entry.plural) text += statement(start, "msgid_plural", *entry.plural);
    return text + translationLines(start, entry);
}

}  // namespace

bool PoEntry::isFuzzy() const {
    return std::find(flags.begin(), flags.end(), "fuzzy") != flags.end();
}

void PoEntry::setFuzzy(bool fuzzy) {
    flags.erase(std::remove(flags.begin(), flags.end(), "fuzzy"), flags.end());
    if (fuzzy) flags.insert(flags.begin(), "fuzzy");
}

const PoEntry* PoFile::header() const {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [](const PoEntry& entry) { return entry.isHeader(); });
    return found == entries.end() ? nullptr : &*found;
}

PoFile readPo(const std::string& content) {
    return PoReader(content).read();
}

std::string poText(const PoFile& file) {
    std::string text;
    for (const PoEntry& entry : file.entries)
        text += (text.empty() ? "" : "\n") + entryText(entry);
    if (!file.lastComments.empty()) text += "\n" + joined(file.lastComments, "\n") + "\n";
    return text;
}

}  // namespace cli
