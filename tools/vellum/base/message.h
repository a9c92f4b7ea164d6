// Messages on standard error.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vellum {

/// Prints "vellum: ..." and a line end. Control characters in `text`, which may come from a page or
/// a path, are escaped.
void printError(const std::string& text);

/// Prints "vellum: warning: ..." in the same way.
void printWarning(const std::string& text);

}  // namespace vellum
