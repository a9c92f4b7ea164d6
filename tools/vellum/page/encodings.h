// The encodings that a page can be in.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "page/checkpoint.h"

namespace vellum {

struct Encoding {
    const char* name;
    /// For iconv; empty where it is not used.
    const char* iconvName;
    /// For Windows; 0 where it has none.
    unsigned codePage;
};

/// The encoding that goes by this label (lower case) in the HTML standard; null for others.
const Encoding* encodingOfLabel(const std::string& label);

/// The bytes in UTF-8, with U+FFFD in the place of those that mean nothing; nothing when the system
/// does not know the encoding. decoder_posix.cpp and decoder_windows.cpp are the two sources behind
/// it.
std::optional<std::string> decoded(const Encoding& encoding, const std::string& bytes,
                                   Checkpoint& checkpoint);

}  // namespace vellum
