// SPDX-License-Identifier: MIT
#include "templates/bundle_marks.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "base/input_file.h"
#include "base/paths.h"
#include "base/text_functions.h"
#include "templates/markup_scanner.h"
#include "templates/template_text.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view bundleStart = "<?rgen-bundle ";
constexpr std::string_view partStart = "<?rgen-part ";
constexpr char folderSeparator = '|';

std::string escaped(const std::string& value) {
    std::string text;
    for (const char letter : value) {
        if (letter == '&') {
            text += "&amp;";
        } else if (letter == '"') {
            text += "&quot;";
        } else if (letter == '>') {
            text += "&gt;";
        } else {
            text += letter;
        }
    }
    return text;
}

/// The value in `name="value"` of an instruction; empty when it is absent.
std::string pseudoAttribute(std::string_view instruction, std::string_view name) {
    const std::string start = " " + std::string(name) + "=\"";
    const std::size_t found = instruction.find(start);
    if (found == std::string_view::npos) return {};
    const std::size_t begin = found + start.size();
    const std::size_t end = instruction.find('"', begin);
    if (end == std::string_view::npos) return {};
    return AttributeValue(instruction, {begin, end}).text();
}

/// FNV-1a. Line ends do not count, since tools for versions change them.
std::string sumOf(std::string_view text) {
    std::uint64_t sum = 0xCBF29CE484222325U;
    for (const char letter : text) {
        if (letter == '\r') continue;
        sum = (sum ^ static_cast<unsigned char>(letter)) * 0x100000001B3U;
    }
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(sum));
    return digits;
}

std::string_view instructionAt(std::string_view text, std::size_t begin) {
    const std::size_t end = text.find("?>", begin);
    return end == std::string_view::npos ? std::string_view() : text.substr(begin, end + 2 - begin);
}

}  // namespace

std::size_t endOfDeclaration(const std::string& text) {
    const std::size_t start = text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    if (text.compare(start, 6, "<?xml ") != 0) return start;
    const std::size_t end = text.find("?>", start);
    return end == std::string::npos ? start : end + 2;
}

std::optional<BundleHeader> bundleHeader(const std::string& text) {
    const std::size_t begin =
        std::min(text.find_first_not_of(" \t\r\n", endOfDeclaration(text)), text.size());
    if (text.compare(begin, bundleStart.size(), bundleStart) != 0) return std::nullopt;
    const std::string_view instruction = instructionAt(text, begin);
    if (instruction.empty()) return std::nullopt;
    BundleHeader header;
    header.source = pseudoAttribute(instruction, "source");
    header.partFolders = split(pseudoAttribute(instruction, "parts"), folderSeparator);
    header.sum = pseudoAttribute(instruction, "sum");
    header.actualSum = sumOf(std::string_view(text).substr(begin + instruction.size()));
    return header;
}

std::string bundleInstruction(const std::string& source,
                              const std::vector<std::string>& partFolders,
                              const std::string& textAfterIt) {
    const std::string folders = joined(partFolders, std::string(1, folderSeparator));
    return std::string(bundleStart) + "source=\"" + escaped(source) + "\"" +
           (folders.empty() ? "" : " parts=\"" + escaped(folders) + "\"") + " sum=\"" +
           sumOf(textAfterIt) + "\"?>";
}

std::string partInstruction(const std::string& file, std::size_t line) {
    return std::string(partStart) + "file=\"" + escaped(file) + "\" line=\"" +
           std::to_string(line) + "\"?>\n";
}

BundleMarks::BundleMarks(const std::string& path, const std::string& text) {
    if (text.find(bundleStart) == std::string::npos) return;
    std::size_t line = 1;
    for (std::size_t at = 0; at < text.size(); ++line) {
        if (text.compare(at, partStart.size(), partStart) == 0) {
            const std::string_view instruction = instructionAt(text, at);
            const fs::path file = fs::u8path(pseudoAttribute(instruction, "file"));
            Mark mark;
            mark.line = line;
            mark.file = (fs::u8path(folderOf(path)) / file).lexically_normal().generic_u8string();
            mark.partLine =
                std::strtoull(pseudoAttribute(instruction, "line").c_str(), nullptr, 10);
            marks_.push_back(std::move(mark));
        }
        const std::size_t end = text.find('\n', at);
        at = end == std::string::npos ? text.size() : end + 1;
    }
}

BundleMarks::~BundleMarks() = default;

const LineIndex* BundleMarks::linesOf(const std::string& file) const {
    const auto [known, isNew] = files_.emplace(file, nullptr);
    std::error_code ignored;
    if (isNew && fs::is_regular_file(fs::u8path(file), ignored))
        known->second = std::make_unique<LineIndex>(readInputFile(file, "check its access rights"));
    return known->second.get();
}

std::optional<PartLine> BundleMarks::originOf(std::size_t line, const std::string& lineText) const {
    const Mark* last = nullptr;
    for (const Mark& mark : marks_) {
        if (mark.line < line) last = &mark;
    }
    const LineIndex* lines = last != nullptr ? linesOf(last->file) : nullptr;
    if (lines == nullptr) return std::nullopt;
    PartLine origin;
    origin.file = last->file;
    origin.line = last->partLine + (line - last->line - 1);
    origin.text = lines->lineAt(lines->offsetOfLine(origin.line));
    // A line that was shared by two parts is a piece of the original one.
    if (origin.text.find(trimmed(lineText)) == std::string::npos) return std::nullopt;
    return origin;
}

}  // namespace cli
