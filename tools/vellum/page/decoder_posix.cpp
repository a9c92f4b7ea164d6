// Decoding by the iconv of the C library.
//
// SPDX-License-Identifier: MIT
#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include "page/encodings.h"

namespace vellum {
namespace {

/// The text for a byte that the encoding does not define. In the windows-* encodings, the HTML
/// standard and Windows itself read such a byte from 0x80 to 0x9F as that control character.
std::string substitute(const Encoding& encoding, char byte) {
    const bool isOfWindows = std::string_view(encoding.name).rfind("windows-", 0) == 0;
    const bool isControl = (static_cast<unsigned char>(byte) & 0xE0U) == 0x80U;
    return isOfWindows && isControl ? std::string{'\xC2', byte} : "\xEF\xBF\xBD";
}

class Converter {
public:
    explicit Converter(const char* encoding) : handle_(iconv_open("UTF-8", encoding)) {}
    ~Converter() {
        if (isOpen()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool isOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    /// Converts up to the first error and appends the result to `text`. Returns 0 or the errno.
    /// With a null `in` it flushes what the converter holds back: in some encodings a character may
    /// be followed by combining marks.
    int convert(char** in, std::size_t* inLeft, std::string& text) {
        std::array<char, 16384> buffer{};
        char* out = buffer.data();
        std::size_t outLeft = buffer.size();
        const bool isDone = iconv(handle_, in, inLeft, &out, &outLeft) != std::size_t(-1);
        const int reason = isDone ? 0 : errno;
        text.append(buffer.data(), buffer.size() - outLeft);
        return reason;
    }

private:
    iconv_t handle_;
};

}  // namespace

std::optional<std::string> decoded(const Encoding& encoding, const std::string& bytes,
                                   Checkpoint& checkpoint) {
    // An empty name would mean the encoding of the locale.
    if (*encoding.iconvName == '\0') return std::nullopt;
    Converter converter(encoding.iconvName);
    if (!converter.isOpen()) return std::nullopt;
    std::string text;
    // Flushing would reset the shift state in the middle of the text.
    const bool hasShifts = std::string_view(encoding.name).rfind("iso-2022-", 0) == 0;
    // The parameter of iconv is not const, but iconv only reads.
    char* in = const_cast<char*>(bytes.data());
    for (std::size_t left = bytes.size(); left > 0;) {
        // In pieces, for the checkpoint. No piece starts inside a character, since iconv stops
        // before an incomplete one.
        std::size_t piece = std::min(left, Checkpoint::interval);
        const std::size_t before = piece;
        const int reason = converter.convert(&in, &piece, text);
        left -= before - piece;
        checkpoint.processed(before - piece + 1);
        const bool isHalf = reason == EINVAL && piece < left && before != piece;
        if (reason == 0 || reason == E2BIG || isHalf) continue;
        if (!hasShifts) converter.convert(nullptr, nullptr, text);
        text += substitute(encoding, *in);
        ++in;
        --left;
    }
    converter.convert(nullptr, nullptr, text);
    return text;
}

}  // namespace vellum
