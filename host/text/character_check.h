// Which bytes of a text XML can contain.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace rgenh {

/// Whether XML may contain the character.
bool isXmlCharacter(std::uint32_t character);

/// A character of UTF-8, or a byte that is not part of one.
struct LeadingCharacter {
    std::size_t length;
    /// The code point; nothing if the byte is not part of valid UTF-8.
    std::optional<std::uint32_t> codePoint;
};

/// The first character of a text that is not empty.
LeadingCharacter leadingCharacter(std::string_view text);

bool isUtf8(std::string_view text);

/// The first part of a text that XML cannot contain.
struct InvalidCharacter {
    /// Of its first byte in the text.
    std::size_t offset;
    /// "U+0007", or "the byte 0xFF".
    std::string name;
};

std::optional<InvalidCharacter> findInvalidCharacter(std::string_view text);

/// The text with U+FFFD for everything that XML cannot contain: a single such character in
/// persistent data or in a template makes the library lose all references after it.
std::string withInvalidReplaced(std::string_view text);

/// The UTF-8 bytes of a code point up to 0x10FFFF.
std::string utf8Of(std::uint32_t codePoint);

}  // namespace rgenh
