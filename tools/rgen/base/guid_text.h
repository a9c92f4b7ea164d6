// GUIDs as texts.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "strata_repgenlib/rgen.h"

namespace cli {

/// "5A0C6F1E-3B74-..." with or without braces in lower case without them; empty when it is no GUID.
std::string guidTextOf(std::string text);

/// The GUID that a text of guidTextOf stands for.
RgenGuid guidOf(const std::string& text);

}  // namespace cli
