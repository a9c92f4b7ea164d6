// The version of rgen.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// "1.2.3".
std::string ownVersion();

}  // namespace cli
