// Encodings by iconv.
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

/// What comes for a byte without a meaning. In the encodings of Windows, the HTML standard and
/// Windows itself take such a byte from 0x80 to 0x9F as the control character of this number.
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

    // The C library says it so.
    bool isOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    /// Converts as far as it goes. Returns 0 or the error's number. Without input it gives what it
    /// has kept back: some encodings have marks that belong to the letter before.
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
    // iconv takes an empty name for the encoding of the user.
    if (*encoding.iconvName == '\0') return std::nullopt;
    Converter converter(encoding.iconvName);
    if (!converter.isOpen()) return std::nullopt;
    std::string text;
    // Where shifts count, the end of the text would end them.
    const bool hasShifts = std::string_view(encoding.name).rfind("iso-2022-", 0) == 0;
    // iconv takes what it only reads as if it wrote there.
    char* in = const_cast<char*>(bytes.data());
    for (std::size_t left = bytes.size(); left > 0;) {
        // In pieces, so that there is a look now and then; one never begins inside a character,
        // since the converter stops before half of one.
        std::size_t piece = std::min(left, Checkpoint::interval);
        const std::size_t before = piece;
        const int reason = converter.convert(&in, &piece, text);
        left -= before - piece;
        checkpoint.passed(before - piece + 1);
        const bool isHalf = reason == EINVAL && piece < left && before != piece;
        if (reason == 0 || reason == E2BIG || isHalf) continue;
        // A letter that was kept back comes before it.
        if (!hasShifts) converter.convert(nullptr, nullptr, text);
        text += substitute(encoding, *in);
        ++in;
        --left;
    }
    converter.convert(nullptr, nullptr, text);
    return text;
}

}  // namespace vellum
