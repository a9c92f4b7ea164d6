// The message begins with "[json.exception.parse_error.101] parse error at line 1, column 2: " and
// has "; last read: '...'" in the middle.
//
// SPDX-License-Identifier: MIT
#include "base/json_error_text.h"

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

}  // namespace cli
