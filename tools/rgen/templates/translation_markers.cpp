// SPDX-License-Identifier: MIT
#include "templates/translation_markers.h"

#include <algorithm>
#include <cctype>
#include <optional>

#include "base/suggestion.h"

namespace cli {
namespace {

constexpr std::string_view keyword = "QT_TRANSLATE_NOOP";
constexpr std::string_view knownContext = "\"QObject\"";
constexpr std::string_view correctForm = "write QT_TRANSLATE_NOOP(\"QObject\", \"Text\")";

/// The six characters that the library skips, whatever the locale.
bool isBlank(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

std::size_t afterBlanks(std::string_view text, std::size_t at) {
    while (at < text.size() && isBlank(text[at]))
        ++at;
    return at;
}

bool startsAt(std::string_view text, std::size_t at, std::string_view expected) {
    return at <= text.size() && text.substr(at, expected.size()) == expected;
}

/// Reads the marker whose keyword begins at `begin`.
std::optional<TranslationMarker> readMarker(std::string_view text, std::size_t begin) {
    std::size_t at = afterBlanks(text, begin + keyword.size());
    if (!startsAt(text, at, "(")) return std::nullopt;
    at = afterBlanks(text, at + 1);
    if (!startsAt(text, at, knownContext)) return std::nullopt;
    at = afterBlanks(text, at + knownContext.size());
    if (!startsAt(text, at, ", \"")) return std::nullopt;
    TranslationMarker marker;
    marker.begin = begin;
    marker.messageBegin = at + 3;
    const std::size_t quote = text.find('"', marker.messageBegin);
    if (quote == std::string_view::npos || !startsAt(text, quote, "\")")) return std::nullopt;
    marker.message = std::string(text.substr(marker.messageBegin, quote - marker.messageBegin));
    marker.end = quote + 2;
    return marker;
}

bool isWordCharacter(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

/// Why the library does not see the marker whose keyword begins at `begin`.
class Diagnosis {
public:
    Diagnosis(std::string_view text, std::size_t begin)
        : text_(text), begin_(begin), at_(afterBlanks(text, begin + keyword.size())) {}

    UnmatchedMarker make() {
        const std::string reason = readReason();
        UnmatchedMarker marker;
        marker.begin = begin_;
        marker.end = std::min(endOfMarker(), text_.size());
        marker.what = "this marker is not translated: " + reason;
        marker.advice = advice_;
        return marker;
    }

private:
    std::string readReason() {
        if (!skip("(")) return "\"(\" is missing after QT_TRANSLATE_NOOP";
        at_ = afterBlanks(text_, at_);
        if (const std::string reason = readContext(); !reason.empty()) return reason;
        at_ = afterBlanks(text_, at_);
        if (const std::string reason = readComma(); !reason.empty()) return reason;
        return readEnd();
    }

    std::string readContext() {
        if (skip(knownContext)) return {};
        if (!skip("\"")) return "the context has no quotes";
        const std::size_t quote = text_.find('"', at_);
        if (quote == std::string_view::npos) return "the context has no closing quote";
        const std::string context(text_.substr(at_, quote - at_));
        at_ = quote + 1;
        advice_ = "write \"QObject\"";
        return "the context is \"" + context + "\", only \"QObject\" is known";
    }

    std::string readComma() {
        if (!skip(",")) return "the comma after \"QObject\" is missing";
        const std::size_t blanks = afterBlanks(text_, at_) - at_;
        if (blanks == 1 && text_[at_] == ' ') {
            ++at_;
            return skip("\"") ? "" : "the text has no quotes";
        }
        advice_ = "write exactly one blank there";
        at_ += blanks;
        if (blanks == 0) return "no blank after the comma";
        if (blanks == 2 && text_.substr(at_ - 2, 2) == "  ") return "two blanks after the comma";
        return blanks == 1 ? "no blank, but another white space after the comma"
                           : "more than one blank after the comma";
    }

    std::string readEnd() {
        const std::size_t quote = text_.find('"', at_);
        if (quote == std::string_view::npos) return "the text has no closing quote";
        at_ = quote + 1;
        const std::size_t next = afterBlanks(text_, at_);
        if (startsAt(text_, next, ")")) {
            advice_ = "write \")\" directly after the quote";
            return "white space before the closing bracket";
        }
        if (quote > 0 && text_[quote - 1] == '\\') {
            advice_ = "write &quot; for a quote inside the text";
        }
        return "the text ends at its first quote, and \")\" does not follow";
    }

    bool skip(std::string_view expected) {
        if (!startsAt(text_, at_, expected)) return false;
        at_ += expected.size();
        return true;
    }

    std::size_t endOfMarker() const {
        const std::size_t close = text_.find_first_of(")\n", at_);
        if (close == std::string_view::npos || text_[close] == '\n') return at_;
        return close + 1;
    }

    std::string_view text_;
    std::size_t begin_;
    std::size_t at_;
    std::string advice_{correctForm};
};

/// A word that was probably meant as the keyword and is followed by an opening bracket.
bool isMisspeltKeyword(std::string_view text, std::size_t begin, std::size_t end) {
    const std::string_view word = text.substr(begin, end - begin);
    if (word == keyword || !startsAt(text, afterBlanks(text, end), "(")) return false;
    const bool looksAlike = word.find("TRANSLATE") != std::string_view::npos ||
                            word.find("translate_noop") != std::string_view::npos;
    constexpr std::size_t smallDistance = 4;
    return (looksAlike && word.find('_') != std::string_view::npos) ||
           editDistance(word, keyword) <= smallDistance;
}

UnmatchedMarker misspeltKeyword(std::string_view text, std::size_t begin, std::size_t end) {
    UnmatchedMarker marker;
    marker.begin = begin;
    marker.end = end;
    marker.what = "this marker is not translated: \"" +
                  std::string(text.substr(begin, end - begin)) + "\" is not a keyword";
    marker.advice = "did you mean \"QT_TRANSLATE_NOOP\"?";
    return marker;
}

/// Adds what is wrong with the word [begin, end) as the keyword of a marker.
void diagnoseWord(std::string_view text, std::size_t begin, std::size_t end,
                  std::vector<UnmatchedMarker>& found) {
    // The library finds its keyword inside of longer words, too.
    const std::size_t inside = text.substr(begin, end - begin).find(keyword);
    if (inside != std::string_view::npos) {
        found.push_back(Diagnosis(text, begin + inside).make());
    } else if (isMisspeltKeyword(text, begin, end)) {
        found.push_back(misspeltKeyword(text, begin, end));
    }
}

}  // namespace

std::vector<TranslationMarker> findMarkers(std::string_view text) {
    std::vector<TranslationMarker> markers;
    std::size_t from = 0;
    for (;;) {
        const std::size_t begin = text.find(keyword, from);
        if (begin == std::string_view::npos) return markers;
        std::optional<TranslationMarker> marker = readMarker(text, begin);
        from = marker ? marker->end : begin + keyword.size();
        if (marker) markers.push_back(std::move(*marker));
    }
}

std::vector<UnmatchedMarker> findUnmatchedMarkers(std::string_view text) {
    std::vector<UnmatchedMarker> found;
    const std::vector<TranslationMarker> markers = findMarkers(text);
    auto marker = markers.begin();
    for (std::size_t at = 0; at < text.size();) {
        if (marker != markers.end() && at >= marker->begin) {
            at = marker->end;
            ++marker;
            continue;
        }
        const std::size_t limit = marker != markers.end() ? marker->begin : text.size();
        std::size_t end = at;
        while (end < limit && isWordCharacter(text[end]))
            ++end;
        if (end - at >= keyword.size() / 2) diagnoseWord(text, at, end, found);
        at = std::max(end, at + 1);
    }
    return found;
}

}  // namespace cli
