// Text from outside (files, paths, pages, the library) made safe to print on a terminal.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tools {

/// Escapes everything in `text` that controls a terminal, starts a new line or reorders what is
/// displayed: control characters (C0, DEL, C1), line and paragraph separators and bidirectional
/// marks become "\n", "\r", "\t", "\x1b" or "\u009b", bytes that are not UTF-8 become "\xff". The
/// characters in `kept` are not escaped. The result is valid UTF-8, and escaping it again does not
/// change it.
std::string printable(std::string_view text, std::string_view kept = {});

}  // namespace tools
