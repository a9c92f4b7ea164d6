// The command line exactly as the library writes it, for Windows: the usual rules for taking a
// command line apart see an escaped quote where a base ends in a backslash.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vellum {

/// The arguments in `PROGRAM -i "A" -b "B" -t html -o "C"`; nothing for a line of another shape.
std::optional<std::vector<std::wstring>> literalArguments(const std::wstring& commandLine);

}  // namespace vellum
