// The translation pass. The marker matcher is written by hand: a regular expression of the standard
// library recurses for each character and overflows the stack of a small thread. This one is linear
// and does not recurse: a message ends at the first quote, so no backtracking is needed.
//
// SPDX-License-Identifier: MIT
#include "generate/translation.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "ascii.h"

namespace rgen {
namespace {

constexpr std::string_view keyword = "QT_TRANSLATE_NOOP";

/// The position of the keyword's first character at or after `from`. If such characters are close
/// together, comparing single bytes is faster than one library call for each of them.
std::size_t findFirstCharacter(std::string_view text, std::size_t from) {
    constexpr std::size_t bytesComparedSingly = 8;
    const std::size_t end = std::min(text.size(), from + bytesComparedSingly);
    for (std::size_t i = from; i < end; ++i) {
        if (text[i] == keyword[0]) return i;
    }
    return text.find(keyword[0], end);
}

/// The position of the keyword at or after `from`. Searches for its Q first, which is rare in
/// templates.
std::size_t findKeyword(std::string_view text, std::size_t from) {
    std::size_t start = findFirstCharacter(text, from);
    while (start != std::string_view::npos) {
        if (text.substr(start, keyword.size()) == keyword) return start;
        start = findFirstCharacter(text, start + 1);
    }
    return start;
}

/// The unread part of a text.
class Cursor {
public:
    explicit Cursor(std::string_view rest) : rest_(rest) {}

    std::string_view rest() const { return rest_; }

    void skipWhiteSpace() {
        while (!rest_.empty() && isWhiteSpace(rest_.front()))
            rest_.remove_prefix(1);
    }

    bool skip(std::string_view expected) {
        if (rest_.substr(0, expected.size()) != expected) return false;
        rest_.remove_prefix(expected.size());
        return true;
    }

    /// Reads the text before the next double quote; false if there is none.
    bool takeUpToQuote(std::string_view& taken) {
        const std::size_t quote = rest_.find('"');
        if (quote == std::string_view::npos) return false;
        taken = rest_.substr(0, quote);
        rest_.remove_prefix(quote);
        return true;
    }

private:
    std::string_view rest_;
};

/// Reads the rest of a marker after its keyword. On a match `message` is set and `cursor` is after
/// the marker.
bool readMarker(Cursor& cursor, std::string_view& message) {
    cursor.skipWhiteSpace();
    if (!cursor.skip("(")) return false;
    cursor.skipWhiteSpace();
    if (!cursor.skip("\"QObject\"")) return false;
    cursor.skipWhiteSpace();
    // On purpose: exactly one space after the comma.
    return cursor.skip(", \"") && cursor.takeUpToQuote(message) && cursor.skip("\")");
}

/// `message` is a part of `source`. The quote after it, which is not read again, is overwritten
/// with the zero byte that terminates the callback's argument.
void appendTranslation(const ReportGenerator& generator, std::string_view message,
                       std::string& source, std::string& result) {
    const auto start = static_cast<std::size_t>(message.data() - source.data());
    source[start + message.size()] = '\0';
    const char* original = source.data() + start;
    const char* translated = generator.translateFunction(original, generator.translateContext);
    // On purpose: a callback must not return null; if it does, the message stays untranslated.
    result += translated != nullptr ? translated : original;
}

}  // namespace

void translateTemplateText(const ReportGenerator& generator, std::string& text) {
    std::string result;
    std::string_view rest = text;
    std::size_t found = findKeyword(rest, 0);
    if (found == std::string_view::npos) return;
    result.reserve(text.size());
    std::size_t searchFrom = 0;
    for (; found != std::string_view::npos; found = findKeyword(rest, searchFrom)) {
        Cursor cursor(rest.substr(found + keyword.size()));
        std::string_view message;
        if (!readMarker(cursor, message)) {
            searchFrom = found + keyword.size();
            continue;
        }
        result.append(rest.substr(0, found));
        appendTranslation(generator, message, text, result);
        rest = cursor.rest();
        searchFrom = 0;
    }
    result.append(rest);
    text = std::move(result);
}

}  // namespace rgen
