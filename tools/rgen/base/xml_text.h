// Escaping and unescaping of texts in XML content.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace cli {

/// `text` with "&amp;" for each "&", so that the library shows the text unchanged.
std::string escapedAmpersands(const std::string& text);

/// The same, but keeps references that are valid in every XML file.
std::string escapedPlainAmpersands(const std::string& text);

/// Replaces the five named references and the numeric ones; everything else stays.
std::string unescaped(const std::string& content);

/// Tells whether an "&" does not begin a reference.
bool hasPlainAmpersand(const std::string& content);

/// A character that XML does not allow: control characters other than tab, line feed and carriage
/// return, U+FFFE, U+FFFF, and bytes that are not UTF-8. A file that contains one is not XML;
/// libxml2 in recovery mode drops the references after it.
struct InvalidCharacter {
    /// Of its first byte in the text.
    std::size_t offset;
    /// "U+0007", or "the byte 0xFF".
    std::string name;
};

/// The first such character of `text`, if any.
std::optional<InvalidCharacter> findInvalidCharacter(const std::string& text);

/// `text` with U+FFFD for each such character.
std::string withInvalidCharactersReplaced(const std::string& text);

/// The first "&...;" in XML content that is not a reference valid in every XML file.
std::optional<std::string> findUnknownReference(const std::string& content);

/// `text` without the white space at its edges that the library removes.
std::string trimmed(const std::string& text);

}  // namespace cli
