// GUIDs as texts.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "strata_repgenlib/rgen.h"

namespace cli {

/// A GUID text in lower case without braces; empty when the text is not a GUID.
std::string guidTextOf(std::string text);

/// Converts a text that guidTextOf returned.
RgenGuid guidOf(const std::string& text);

}  // namespace cli
