// SPDX-License-Identifier: MIT
#include "preview/editor_command.h"

#include "base/command_error.h"

namespace cli {
namespace {

/// Replaces from left to right, so that braces in a file name stay as they are.
std::string filledIn(const std::string& word, const std::string& file, std::size_t line,
                     std::size_t column) {
    const std::pair<std::string, std::string> names[] = {
        {"{file}", file}, {"{line}", std::to_string(line)}, {"{column}", std::to_string(column)}};
    std::string filled;
    for (std::size_t i = 0; i < word.size();) {
        std::size_t length = 1;
        std::string text(1, word[i]);
        for (const auto& [name, content] : names) {
            if (word.compare(i, name.size(), name) != 0) continue;
            length = name.size();
            text = content;
        }
        filled += text;
        i += length;
    }
    return filled;
}

}  // namespace

std::vector<std::string> commandWords(const std::string& command) {
    std::vector<std::string> words;
    char quote = '\0';
    bool isInWord = false;
    for (const char letter : command) {
        const bool isQuote = quote == '\0' ? letter == '"' || letter == '\'' : letter == quote;
        if (quote == '\0' && (letter == ' ' || letter == '\t')) {
            isInWord = false;
            continue;
        }
        if (!isInWord) words.emplace_back();
        isInWord = true;
        if (isQuote) {
            quote = quote == '\0' ? letter : '\0';
        } else {
            words.back() += letter;
        }
    }
    if (quote == '\0' && !words.empty() && !words.front().empty()) return words;
    throw usageErrorOf(
        "preview", "\"" + command + "\" is not a command for --editor",
        quote == '\0' ? "write --editor \"code -g {file}:{line}\"" : "close the quote");
}

std::vector<std::string> editorWords(const std::string& command, const std::string& file,
                                     std::size_t line, std::size_t column) {
    std::vector<std::string> words = commandWords(command);
    for (std::string& word : words)
        word = filledIn(word, file, line, column);
    return words;
}

}  // namespace cli
