// The version of rgen.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace cli {

/// "0.1.0".
std::string ownVersion();

}  // namespace cli
