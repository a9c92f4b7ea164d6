// Reading files as a whole and finding places in them.
//
// SPDX-License-Identifier: MIT
#include "input_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>
#include <vector>

#include "command_error.h"

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

/// Length of the UTF-8 sequence at the start of `bytes`, 0 when there is no valid one.
std::size_t sequenceLength(const unsigned char* bytes, std::size_t available) {
    const unsigned char first = bytes[0];
    if (first < 0x80) return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || length > available) return 0;
    const unsigned char lowest = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const unsigned char highest = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    if (bytes[1] < lowest || bytes[1] > highest) return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if (bytes[i] < 0x80 || bytes[i] > 0xBF) return 0;
    }
    return length;
}

}  // namespace

std::string readInputFile(const std::string& path, const std::string& hint) {
    if (path == "-") return wholeStream(std::cin);
    const std::filesystem::path file = std::filesystem::u8path(path);
    std::error_code ignored;
    if (std::filesystem::is_directory(file, ignored)) throw unreadable(path, EISDIR, hint);
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw unreadable(path, errno == 0 ? EIO : errno, hint);
    std::string content = wholeStream(stream);
    if (stream.bad()) throw unreadable(path, EIO, hint);
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
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = sequenceLength(bytes + i, text.size() - i);
        if (length == 0 || bytes[i] == 0) return false;
        i += length;
    }
    return true;
}

bool exists(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::u8path(path), ignored);
}

std::string joinedPath(const std::string& folder, const std::string& name) {
    if (folder.empty() || folder == ".") return name;
    const char last = folder.back();
    const bool hasDrives = std::filesystem::path::preferred_separator == '\\';
    const bool hasSeparator = last == '/' || (hasDrives && (last == '\\' || last == ':'));
    return folder + (hasSeparator ? "" : "/") + name;
}

std::string folderOf(const std::string& path) {
    const std::string folder = std::filesystem::u8path(path).parent_path().u8string();
    return folder.empty() ? "." : folder;
}

}  // namespace cli
