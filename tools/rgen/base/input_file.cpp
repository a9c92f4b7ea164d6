// SPDX-License-Identifier: MIT
#include "base/input_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>
#include <vector>

#include "base/command_error.h"
#include "base/file_set.h"
#include "text/utf8.h"

namespace cli {
namespace {

constexpr const char* byteOrderMark = "\xEF\xBB\xBF";

CommandError unreadable(const std::string& path, int reason, const std::string& hint) {
    return usageError("cannot read \"" + path + "\": " + std::generic_category().message(reason),
                      hint);
}

std::string wholeStream(std::istream& stream) {
    std::string content;
    std::vector<char> buffer(65536);
    while (stream.read(buffer.data(), static_cast<std::streamsize>(buffer.size())) ||
           stream.gcount() > 0) {
        content.append(buffer.data(), static_cast<std::size_t>(stream.gcount()));
    }
    return content;
}

}  // namespace

std::string readInputFile(const std::string& path, const std::string& hint) {
    if (path == "-") return wholeStream(std::cin);
    // The system would cut the name there and open a different file.
    if (path.find('\0') != std::string::npos) throw unreadable(path, EINVAL, hint);
    const std::filesystem::path file = std::filesystem::u8path(path);
    std::error_code ignored;
    if (std::filesystem::is_directory(file, ignored)) throw unreadable(path, EISDIR, hint);
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw unreadable(path, errno == 0 ? EIO : errno, hint);
    std::string content = wholeStream(stream);
    if (stream.bad()) throw unreadable(path, EIO, hint);
    filesRead().add(path);
    return content;
}

TextPosition positionOf(const std::string& text, std::size_t offset) {
    TextPosition position;
    const std::size_t start = text.compare(0, 3, byteOrderMark) == 0 ? 3 : 0;
    for (std::size_t i = start; i < std::min(offset, text.size()); ++i) {
        if (text[i] == '\n') {
            ++position.line;
            position.column = 1;
        } else if ((static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U) {
            ++position.column;
        }
    }
    return position;
}

std::string inputName(const std::string& path) {
    return path == "-" ? "standard input" : path;
}

std::string placeText(const std::string& file, const TextPosition& position) {
    return inputName(file) + ":" + std::to_string(position.line) + ":" +
           std::to_string(position.column);
}

bool isPlainUtf8(const std::string& text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = tools::sequenceLength(std::string_view(text).substr(i));
        if (length == 0 || text[i] == '\0') return false;
        i += length;
    }
    return true;
}

}  // namespace cli
