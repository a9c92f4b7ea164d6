// The message begins with "[json.exception.parse_error.101] parse error at line 1, column 2: " and
// has "; last read: '...'" in the middle.
//
// SPDX-License-Identifier: MIT
#include "base/json_error_text.h"

#include <string_view>

#include "base/command_error.h"
#include "base/input_file.h"

namespace cli {

std::string jsonErrorText(const std::string& text) {
    const std::size_t column = text.find("column ");
    const std::size_t colon = column == std::string::npos ? column : text.find(": ", column);
    const std::size_t bracket = text.find("] ");
    std::string message = colon != std::string::npos     ? text.substr(colon + 2)
                          : bracket != std::string::npos ? text.substr(bracket + 2)
                                                         : text;
    const std::size_t read = message.find("; last read: '");
    if (read == std::string::npos) return message;
    const std::size_t end = message.rfind('\'');
    return message.substr(0, read) + message.substr(end + 1);
}

std::size_t lineOfLastComma(const std::string& text, std::size_t offset) {
    if (offset == 0 || offset >= text.size()) return 0;
    if (text[offset] != '}' && text[offset] != ']') return 0;
    const std::size_t comma = text.find_last_not_of(" \t\r\n", offset - 1);
    if (comma == std::string::npos || text[comma] != ',') return 0;
    return positionOf(text, comma).line;
}

void requireNotUtf16(const std::string& text, const std::string& path) {
    if (text.size() < 2) return;
    const std::string_view start = std::string_view(text).substr(0, 2);
    const bool hasMark = start == "\xFF\xFE" || start == "\xFE\xFF";
    const bool hasZero = (start[0] == '\0') != (start[1] == '\0');
    if (!hasMark && !hasZero) return;
    throw usageError(inputName(path) + ": the file is UTF-16", "save it as UTF-8");
}

}  // namespace cli
