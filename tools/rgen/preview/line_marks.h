// Marks that lead from an element of a shown report back to the template.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// The attribute that holds "LINE:COLUMN" of the element in its template.
inline constexpr const char* placeAttribute = "data-rgen-place";

/// The template with the attribute added to every literal result element. Messages of markers stay
/// as they are, because a translation is found by its exact message. A text that is not well-formed
/// is returned unchanged.
std::string withLineMarks(const std::string& templateText);

}  // namespace cli
