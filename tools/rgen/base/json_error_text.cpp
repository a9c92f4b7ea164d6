// The parser puts "[json.exception.parse_error.101] parse error at line 1, column 2: " in front and
// "; last read: '...'" into the middle of what it says.
//
// SPDX-License-Identifier: MIT
#include "base/json_error_text.h"

namespace cli {

std::string parserWords(const std::string& text) {
    const std::size_t column = text.find("column ");
    const std::size_t colon = column == std::string::npos ? column : text.find(": ", column);
    const std::size_t bracket = text.find("] ");
    std::string words = colon != std::string::npos     ? text.substr(colon + 2)
                        : bracket != std::string::npos ? text.substr(bracket + 2)
                                                       : text;
    const std::size_t read = words.find("; last read: '");
    if (read == std::string::npos) return words;
    const std::size_t end = words.rfind('\'');
    return words.substr(0, read) + words.substr(end + 1);
}

}  // namespace cli
