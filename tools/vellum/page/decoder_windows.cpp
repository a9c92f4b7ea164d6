// Decoding by the code pages of Windows.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <climits>

#include "page/encodings.h"
#include "page/utf8.h"

namespace vellum {

std::optional<std::string> decoded(const Encoding& encoding, const std::string& bytes,
                                   Checkpoint& checkpoint) {
    if (encoding.codePage == 0 || IsValidCodePage(encoding.codePage) == 0) return std::nullopt;
    if (bytes.empty()) return std::string();
    if (bytes.size() > INT_MAX) return std::nullopt;
    const int size = static_cast<int>(bytes.size());
    const int length = MultiByteToWideChar(encoding.codePage, 0, bytes.data(), size, nullptr, 0);
    if (length <= 0) return std::nullopt;
    std::string units(static_cast<std::size_t>(length) * sizeof(wchar_t), '\0');
    MultiByteToWideChar(encoding.codePage, 0, bytes.data(), size,
                        reinterpret_cast<wchar_t*>(units.data()), length);
    return utf8OfUtf16(units, 0, false, checkpoint);
}

}  // namespace vellum
