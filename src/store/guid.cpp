// GUID text: the writer and the matcher. The matcher is written out because compiling a regular
// expression costs more than a small report.
//
// SPDX-License-Identifier: MIT
#include "store/guid.h"

#include <cstddef>
#include <cstdio>
#include <string_view>

#include "ascii.h"

namespace rgen {

std::string formatGuid(const Guid& guid) {
    char text[37] = {};
    const auto& tail = guid.data4;
    std::snprintf(text, sizeof text, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x",
                  unsigned{guid.data1}, unsigned{guid.data2}, unsigned{guid.data3},
                  unsigned{tail[0]}, unsigned{tail[1]}, unsigned{tail[2]}, unsigned{tail[3]},
                  unsigned{tail[4]}, unsigned{tail[5]}, unsigned{tail[6]}, unsigned{tail[7]});
    return text;
}

bool isGuidText(const std::string& text) {
    constexpr std::string_view shape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    if (text.size() != shape.size()) return false;
    for (std::size_t i = 0; i < shape.size(); ++i) {
        const bool fits = shape[i] == '-' ? text[i] == '-'
                                          : isHexDigit(text[i]) && toLowerAscii(text[i]) == text[i];
        if (!fits) return false;
    }
    return true;
}

}  // namespace rgen
