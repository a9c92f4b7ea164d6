// The translation pass. The marker matcher is written out: a regular expression of the standard
// library recurses for each character and overflows the stack of a small thread. This one is linear
// and uses no stack: a message ends at the first quote, so there is nothing to go back for.
//
// SPDX-License-Identifier: MIT
#include "generate/translation.h"

#include <cstddef>
#include <string_view>
#include <utility>

#include "ascii.h"

namespace rgen {
namespace {

constexpr std::string_view keyword = "QT_TRANSLATE_NOOP";

/// The part of a text that is still to be read.
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

    /// Takes everything up to the next double quote; false when there is none.
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

/// Reads what follows the keyword. On a match `message` is set and `cursor` stands behind the
/// marker.
bool readMarker(Cursor& cursor, std::string_view& message) {
    cursor.skipWhiteSpace();
    if (!cursor.skip("(")) return false;
    cursor.skipWhiteSpace();
    if (!cursor.skip("\"QObject\"")) return false;
    cursor.skipWhiteSpace();
    // On purpose: exactly one blank behind the comma.
    return cursor.skip(", \"") && cursor.takeUpToQuote(message) && cursor.skip("\")");
}

void appendTranslation(const ReportGenerator& generator, std::string_view message,
                       std::string& text) {
    const std::string original(message);
    const char* translated =
        generator.translateFunction(original.c_str(), generator.translateContext);
    // On purpose: a callback must not return null; one that does gets its message back.
    text += translated != nullptr ? translated : original.c_str();
}

}  // namespace

void translateTemplateText(const ReportGenerator& generator, std::string& text) {
    std::string result;
    std::string_view rest = text;
    std::size_t found = rest.find(keyword);
    if (found == std::string_view::npos) return;
    std::size_t searchFrom = 0;
    for (; found != std::string_view::npos; found = rest.find(keyword, searchFrom)) {
        Cursor cursor(rest.substr(found + keyword.size()));
        std::string_view message;
        if (!readMarker(cursor, message)) {
            searchFrom = found + keyword.size();
            continue;
        }
        result.append(rest.substr(0, found));
        appendTranslation(generator, message, result);
        rest = cursor.rest();
        searchFrom = 0;
    }
    result.append(rest);
    text = std::move(result);
}

}  // namespace rgen
