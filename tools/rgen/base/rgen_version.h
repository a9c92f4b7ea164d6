// The version that rgen was built as.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// "1.2.3".
std::string rgenVersion();

}  // namespace cli
