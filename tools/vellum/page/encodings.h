// The encodings of the HTML standard.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "page/checkpoint.h"

namespace vellum {

struct Encoding {
    const char* name;
    /// Name for iconv; empty when it cannot decode this.
    const char* iconvName;
    /// Code page of Windows; 0 when it has none.
    unsigned codePage;
};

/// The encoding with this label (in lower case) in the HTML standard; null for others.
const Encoding* encodingForLabel(const std::string& label);

/// Decodes bytes into UTF-8, with U+FFFD for bytes that the encoding does not define; empty
/// optional when the system cannot decode it. decoder_posix.cpp and decoder_windows.cpp implement
/// it.
std::optional<std::string> decoded(const Encoding& encoding, const std::string& bytes,
                                   Checkpoint& checkpoint);

}  // namespace vellum
