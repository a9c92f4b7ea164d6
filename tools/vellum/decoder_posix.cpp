// Encodings by iconv.
//
// SPDX-License-Identifier: MIT
#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "encoding_list.h"

namespace vellum {
namespace {

constexpr const char* replacement = "\xEF\xBF\xBD";

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
        text += replacement;
        ++in;
        --left;
    }
    converter.convert(nullptr, nullptr, text);
    return text;
}

}  // namespace vellum
