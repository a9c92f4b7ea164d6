// Explanations of the library's statuses: likely causes and what to do next.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

#include "strata_repgenlib/rgen.h"

namespace cli {

/// The explanation of one status.
struct StatusExplanation {
    RgenStatus status;
    /// The name in rgen_status.h, "RGEN_E_EMPTY_INPUT".
    std::string_view name;
    /// One to three, the most likely first, without a period at the end.
    std::vector<std::string_view> causes;
    /// One sentence with its period.
    std::string_view next;
};

/// All statuses, in the order of rgen_status.h.
const std::vector<StatusExplanation>& statusTable();

/// The entry of a status; null for a number that is not a status.
const StatusExplanation* findStatus(RgenStatus status);

}  // namespace cli
