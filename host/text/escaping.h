// Escapes the texts of a host for the library, which reads them as XML content. Functions throw an
// ArgumentError for texts that would damage others.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace rgenh {

/// The library silently cuts a longer persistent text.
constexpr std::size_t longestStoredText = 10000000;
/// The library loses a persistent name that is too long in its file, where a byte takes up to six.
constexpr std::size_t longestStoredName = 1000000;

/// "&" becomes "&amp;".
std::string escaped(std::string_view text);

/// A plain text for persistent data, which the library reads twice; it also removes leading and
/// trailing white space unless that is written as references.
std::string storedText(std::string_view text);

/// Markup for persistent data. Throws for references that XML does not know and for what is too
/// long.
std::string storedMarkup(std::string_view content);

/// A name for persistent data.
std::string storedName(std::string_view name);

/// Markup without characters that XML cannot contain. Throws for references that XML does not know.
std::string checkedMarkup(std::string_view content);

/// A plain translation as part of a template; see rgenh_escapeTranslation.
std::string translationMarkup(std::string_view original, std::string_view translation);

}  // namespace rgenh
