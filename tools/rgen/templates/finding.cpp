// SPDX-License-Identifier: MIT
#include "templates/finding.h"

#include <algorithm>
#include <map>
#include <tuple>

#include "text/utf8.h"

namespace cli {
namespace {

/// The characters of a text, each as its bytes. A tab is one blank, so that the mark below fits.
std::vector<std::string> charactersOf(const std::string& text) {
    std::vector<std::string> characters;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length =
            std::max<std::size_t>(1, tools::sequenceLength(std::string_view(text).substr(i)));
        characters.push_back(text[i] == '\t' ? " " : text.substr(i, length));
        i += length;
    }
    return characters;
}

/// The part of a line that is shown, [begin, end) in characters.
struct Window {
    std::size_t begin;
    std::size_t end;
};

Window windowAround(std::size_t mark, std::size_t size) {
    constexpr std::size_t shownCharacters = 110;
    constexpr std::size_t before = 50;
    if (size <= shownCharacters) return {0, size};
    const std::size_t begin = std::min(mark > before ? mark - before : 0, size - shownCharacters);
    return {begin, begin + shownCharacters};
}

bool isSame(const Finding& one, const Finding& other) {
    return std::tie(one.file, one.position.line, one.position.column, one.what, one.advice) ==
           std::tie(other.file, other.position.line, other.position.column, other.what,
                    other.advice);
}

}  // namespace

const char* severityName(Severity severity) {
    if (severity == Severity::Error) return "error";
    return severity == Severity::Warning ? "warning" : "note";
}

std::string findingText(const Finding& finding) {
    return finding.advice.empty() ? finding.what : finding.what + "; " + finding.advice;
}

std::string findingLine(const Finding& finding) {
    return placeText(finding.file, finding.position) + ": " + severityName(finding.severity) +
           ": " + findingText(finding);
}

std::string findingExcerpt(const Finding& finding) {
    const std::vector<std::string> characters = charactersOf(finding.sourceLine);
    if (finding.sourceLine.find_first_not_of(" \t\r") == std::string::npos) return {};
    const std::size_t mark = std::min(finding.position.column - 1, characters.size());
    const Window window = windowAround(mark, characters.size());
    const std::size_t markEnd =
        std::min(mark + std::max<std::size_t>(1, finding.length), std::max(window.end, mark + 1));
    std::string line = window.begin > 0 ? "..." : "";
    const std::size_t indent = line.size() + mark - window.begin;
    for (std::size_t i = window.begin; i < window.end; ++i)
        line += characters[i];
    if (window.end < characters.size()) line += "...";
    return "    " + line + "\n    " + std::string(indent, ' ') + "^" +
           std::string(markEnd - mark - 1, '~') + "\n";
}

void Findings::add(Finding finding) {
    for (const Finding& known : findings_) {
        if (isSame(known, finding)) return;
    }
    findings_.push_back(std::move(finding));
}

void Findings::add(const Findings& others) {
    for (const Finding& finding : others.all())
        add(finding);
}

std::size_t Findings::count(Severity severity) const {
    return static_cast<std::size_t>(
        std::count_if(findings_.begin(), findings_.end(),
                      [severity](const Finding& finding) { return finding.severity == severity; }));
}

void Findings::sort() {
    std::map<std::string, std::size_t> order;
    for (const Finding& finding : findings_)
        order.emplace(finding.file, order.size());
    std::stable_sort(
        findings_.begin(), findings_.end(), [&order](const Finding& one, const Finding& other) {
            return std::make_tuple(order[one.file], one.position.line, one.position.column) <
                   std::make_tuple(order[other.file], other.position.line, other.position.column);
        });
}

}  // namespace cli
