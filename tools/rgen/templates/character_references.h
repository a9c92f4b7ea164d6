// References in XML: "&amp;", "&#160;", "&name;".
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>

namespace cli {

struct ReferenceMistake {
    /// In bytes; 0 when nothing is wrong.
    std::size_t length = 0;
    const char* code = "";
    std::string what;
    std::string advice;
};

/// What is wrong with the reference at the start of `text`, which begins with "&". `declared` holds
/// the entities of the document.
ReferenceMistake mistakeInReference(std::string_view text,
                                    const std::set<std::string, std::less<>>& declared);

struct DecodedReference {
    /// In bytes; 0 when `text` does not begin with a reference to a character.
    std::size_t length = 0;
    std::string text;
};

/// The character of a predefined or numeric reference at the start of `text`.
DecodedReference decodeReference(std::string_view text);

}  // namespace cli
