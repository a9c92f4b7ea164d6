// Character and entity references of XML content.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace rgenh {

/// Replaces the references of XML content by their characters; every other "&" stays.
std::string withoutReferences(std::string_view content);

/// The form in which a document may contain a reference such as "&amp;": itself, or "&#xFFFD;" for
/// the number of a character that XML cannot contain. Empty if XML does not know the reference.
std::string heldReference(std::string_view reference);

/// Replaces each reference of a text, or "&" where there is none, by the result of `meant`. Its
/// arguments are the reference, or "&", and the position in the text.
std::string mapAmpersands(std::string_view text,
                          const std::function<std::string(std::string_view, std::size_t)>& meant);

}  // namespace rgenh
