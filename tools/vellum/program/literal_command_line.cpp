// Matches from the start: none of the three texts can contain a double quote.
//
// SPDX-License-Identifier: MIT
#include "program/literal_command_line.h"

namespace vellum {
namespace {

/// The offset after the name of the program.
std::size_t endOfProgram(const std::wstring& line) {
    if (line.empty() || line[0] != L'"') return line.find(L' ');
    const std::size_t quote = line.find(L'"', 1);
    return quote == std::wstring::npos ? quote : quote + 1;
}

/// Reads `opening`, the text up to the next quote, and that quote; moves `at` after them.
bool readText(const std::wstring& line, const std::wstring& opening, std::size_t& at,
              std::wstring& text) {
    if (line.compare(at, opening.size(), opening) != 0) return false;
    const std::size_t start = at + opening.size();
    const std::size_t quote = line.find(L'"', start);
    if (quote == std::wstring::npos) return false;
    text = line.substr(start, quote - start);
    at = quote + 1;
    return true;
}

}  // namespace

std::optional<std::vector<std::wstring>> literalArguments(const std::wstring& commandLine) {
    std::size_t at = endOfProgram(commandLine);
    if (at == std::wstring::npos) return std::nullopt;
    std::wstring input;
    std::wstring base;
    std::wstring output;
    const bool matches =
        readText(commandLine, L" -i \"", at, input) && readText(commandLine, L" -b \"", at, base) &&
        readText(commandLine, L" -t html -o \"", at, output) && at == commandLine.size();
    if (!matches) return std::nullopt;
    return std::vector<std::wstring>{L"-i", input, L"-b", base, L"-t", L"html", L"-o", output};
}

}  // namespace vellum
