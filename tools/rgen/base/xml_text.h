// Texts as XML content, by the rules of the library.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "strata_repgenlib/rgen.hpp"

namespace cli {

namespace repgen = strata::repgen;

/// The XML content that a report shows as this text.
std::string contentOf(const repgen::Text& text);

/// The content that persistent data returns for this text. Throws a repgen::ArgumentError for a
/// text that persistent data cannot contain.
std::string storedContentOf(const repgen::Text& text);

/// A plain translation as part of a template.
std::string translationContent(const std::string& original, const std::string& translation);

/// Replaces the references by their characters; everything else stays.
std::string unescaped(const std::string& content);

/// Tells whether an "&" does not begin a reference.
bool hasPlainAmpersand(const std::string& content);

/// The first "&...;" in XML content that is not a reference to a character of XML.
std::optional<std::string> findUnknownReference(const std::string& content);

/// `text` with U+FFFD for each character that XML cannot contain.
std::string withInvalidCharactersReplaced(const std::string& text);

/// Why XML cannot contain the text: "the text contains U+0007 at byte 3"; empty if it can.
std::string invalidCharacterIn(const std::string& text);

}  // namespace cli
