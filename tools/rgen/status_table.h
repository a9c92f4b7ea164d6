// What the statuses of the library mean to a person: likely causes and the next thing to try.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

#include "strata_repgenlib/rgen.h"

namespace cli {

/// What a person wants to know of one status.
struct StatusExplanation {
    RgenStatus status;
    /// The name in rgen_status.h, "RGEN_E_EMPTY_INPUT".
    std::string_view name;
    /// One to three, the likeliest first, without a period at the end.
    std::vector<std::string_view> causes;
    /// One sentence with its period.
    std::string_view next;
};

/// All 37, in the order of rgen_status.h.
const std::vector<StatusExplanation>& statusTable();

/// The entry of a status; null for a number that is none of the 37.
const StatusExplanation* findStatus(RgenStatus status);

}  // namespace cli
