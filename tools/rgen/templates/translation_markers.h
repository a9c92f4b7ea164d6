// The marked texts of a template: QT_TRANSLATE_NOOP("QObject", "Text"), by the library's rules.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// A marker that the library replaces by the translation of its message. Offsets are in bytes.
struct TranslationMarker {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t messageBegin = 0;
    std::string message;
};

/// Something that looks like a marker, but stays in the report as it stands.
struct UnmatchedMarker {
    std::size_t begin = 0;
    std::size_t end = 0;
    /// "this marker is not translated: two blanks after the comma".
    std::string what;
    std::string advice;
};

/// The markers in their order. They do not overlap.
std::vector<TranslationMarker> findMarkers(std::string_view text);

/// What was probably meant as a marker. Comments of the template are not left out.
std::vector<UnmatchedMarker> findUnmatchedMarkers(std::string_view text);

}  // namespace cli
