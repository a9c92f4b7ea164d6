// The byte dump scanner and parser against a plain one for texts of every length, and against the
// regular expression for short ones.
//
// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdlib>
#include <string_view>

#include "fuzz_support.h"
#include "fuzz_targets.h"
#include "support/expression_oracles.h"
#include "variant/byte_dump.h"

namespace rgen_fuzz {
namespace {

constexpr std::size_t longestForExpression = 256;

std::string withoutWhiteSpaceAround(const std::string& text) {
    constexpr const char* whiteSpace = " \t\n\v\f\r";
    const std::size_t start = text.find_first_not_of(whiteSpace);
    if (start == std::string::npos) return {};
    return text.substr(start, text.find_last_not_of(whiteSpace) - start + 1);
}

bool readByte(const std::string& token, rgen::ByteVector& bytes) {
    constexpr std::string_view digits = "0123456789abcdefABCDEF";
    if (token.size() != 4 || token[0] != '0' || token[1] != 'x') return false;
    for (const char digit : {token[2], token[3]}) {
        if (digits.find(digit) == std::string_view::npos) return false;
    }
    bytes.push_back(static_cast<std::uint8_t>(std::strtoul(token.c_str() + 2, nullptr, 16)));
    return true;
}

// Splits the text at its commas and checks each part.
bool readPlainly(const std::string& text, rgen::ByteVector& bytes) {
    std::size_t start = 0;
    for (;;) {
        const std::size_t comma = text.find(',', start);
        if (!readByte(withoutWhiteSpaceAround(text.substr(start, comma - start)), bytes)) {
            return false;
        }
        if (comma == std::string::npos) return true;
        start = comma + 1;
    }
}

}  // namespace

void fuzzByteDump(const std::string& input) {
    rgen::ByteVector expected;
    const bool valid = readPlainly(input, expected);
    require(rgen::isValidByteDump(input) == valid, "scanner and plain reader differ", input);
    if (input.size() <= longestForExpression) {
        require(rgen_test::isByteDumpByExpression(input) == valid, "scanner and expression differ",
                input);
    }
    // The parser speaks about an invalid text on standard output, so it is asked about valid ones.
    if (!valid) return;
    rgen::ByteVector bytes;
    require(rgen::parseByteDump(input, bytes) && bytes == expected, "other bytes were read", input);
}

}  // namespace rgen_fuzz
