// UTF-8 check, done before every use of a path.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace rgen::platform {

/// Throws std::range_error ("bad conversion") unless `text` is strict UTF-8: no invalid, overlong
/// or incomplete sequences, no surrogates, nothing above U+10FFFF.
void requireUtf8(const std::string& text);

}  // namespace rgen::platform
