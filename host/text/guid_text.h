// GUIDs as texts.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "strata_repgenlib/rgen.h"

namespace rgenh {

/// Reads 36 characters in upper or lower case, in braces or not.
std::optional<RgenGuid> parseGuid(std::string_view text);

/// 36 characters in lower case.
std::string guidText(const RgenGuid& guid);

}  // namespace rgenh
