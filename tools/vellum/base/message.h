// What people read on standard error.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vellum {

/// "vellum: ..." on standard error: one line that steers no terminal, whatever a page or a path
/// puts into `text`.
void say(const std::string& text);

/// "vellum: warning: ...", likewise.
void warn(const std::string& text);

}  // namespace vellum
