// Texts on their way into XML content and back.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace cli {

/// `text` with "&amp;" for each "&": what the library needs to show the text as it is.
std::string escapedAmpersands(const std::string& text);

/// The same, but the references that every XML file may hold stay.
std::string escapedPlainAmpersands(const std::string& text);

/// The text that XML content stands for: the five named and the numeric references are replaced,
/// anything else stays.
std::string withoutReferences(const std::string& content);

/// Tells whether "&" stands somewhere without starting a reference.
bool hasPlainAmpersand(const std::string& content);

/// Text that XML cannot hold: control characters besides tab, line feed and carriage return,
/// U+FFFE, U+FFFF, and bytes that are no UTF-8. A file with one of them is no XML, and what is read
/// of it all the same lacks the references after it.
struct UnfitCharacter {
    /// Its first byte in the text.
    std::size_t offset;
    /// "U+0007", or "the byte 0xFF".
    std::string name;
};

/// The first such character of `text`, if any.
std::optional<UnfitCharacter> findUnfitCharacter(const std::string& text);

/// `text` with U+FFFD for each such character.
std::string withoutUnfitCharacters(const std::string& text);

/// The first "&...;" of XML content that is none of the references that every XML file may hold.
std::optional<std::string> findUnknownReference(const std::string& content);

/// `text` without the white space at its edges that the library cuts.
std::string trimmed(const std::string& text);

}  // namespace cli
