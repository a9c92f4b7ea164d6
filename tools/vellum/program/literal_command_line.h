// The library's command line, read literally on Windows: by the usual rules of quoting, a base that
// ends in a backslash would escape the quote after it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vellum {

/// The arguments of `PROGRAM -i "A" -b "B" -t html -o "C"`; empty optional for any other command
/// line.
std::optional<std::vector<std::wstring>> literalArguments(const std::wstring& commandLine);

}  // namespace vellum
