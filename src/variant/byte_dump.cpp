// Scanner and parser of byte dumps. The parser parses only text that the scanner has accepted.
//
// SPDX-License-Identifier: MIT
#include "variant/byte_dump.h"

#include <charconv>
#include <cstddef>
#include <cstdio>

#include "ascii.h"

namespace rgen {
namespace {

enum class ScanState { Start, AfterToken, AfterComma, Invalid };

constexpr std::size_t tokenLength = 4;

bool tokenStartsAt(const std::string& text, std::size_t position) {
    return text.compare(position, 2, "0x") == 0 && text.size() - position >= tokenLength &&
           isHexDigit(text[position + 2]) && isHexDigit(text[position + 3]);
}

/// Reads one character or token at `position`, advances `position` and returns the new state.
ScanState scanStep(const std::string& text, std::size_t& position, ScanState state) {
    if (isWhiteSpace(text[position])) {
        ++position;
        return state;
    }
    if (state == ScanState::AfterToken) {
        return text[position++] == ',' ? ScanState::AfterComma : ScanState::Invalid;
    }
    if (!tokenStartsAt(text, position)) return ScanState::Invalid;
    position += tokenLength;
    return ScanState::AfterToken;
}

}  // namespace

bool isValidByteDump(const std::string& text) {
    ScanState state = ScanState::Start;
    for (std::size_t position = 0; position < text.size() && state != ScanState::Invalid;) {
        state = scanStep(text, position, state);
    }
    return state == ScanState::AfterToken;
}

bool parseByteDump(const std::string& text, ByteVector& bytes) {
    if (!isValidByteDump(text)) {
        std::fputs("input byte dump string is invalid\n", stdout);
        std::fflush(stdout);
        return false;
    }
    const char* const start = text.data();
    std::size_t token = text.find('0');
    while (token != std::string::npos) {
        std::uint8_t byte = 0;
        std::from_chars(start + token + 2, start + token + tokenLength, byte, 16);
        bytes.push_back(byte);
        const std::size_t comma = text.find(',', token);
        token = comma == std::string::npos ? comma : text.find('0', comma);
    }
    return !bytes.empty();
}

}  // namespace rgen
