// Texts on their way into XML content and back.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// `text` with "&amp;" for each "&": what the library needs to show the text as it is.
std::string escapedAmpersands(const std::string& text);

/// The text that XML content stands for: the five named and the numeric references are replaced,
/// anything else stays.
std::string withoutReferences(const std::string& content);

/// Tells whether "&" stands somewhere without starting a reference.
bool hasPlainAmpersand(const std::string& content);

/// `text` with U+FFFD for U+FFFE and U+FFFF, which make a file no XML.
std::string withoutNoncharacters(std::string text);

/// `text` without the white space at its edges that the library cuts.
std::string trimmed(const std::string& text);

}  // namespace cli
