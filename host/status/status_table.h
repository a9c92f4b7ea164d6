// What the library's statuses mean: names, likely causes and what to do next.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "strata_repgenlib/rgen.h"

namespace rgenh {

constexpr std::size_t mostCauses = 3;

/// The explanation of one status. Texts are null-terminated and static.
struct StatusExplanation {
    RgenStatus status;
    /// The name in rgen_status.h, "RGEN_E_EMPTY_INPUT".
    const char* name;
    /// The most likely first, without a period at the end; null after the last one.
    const char* causes[mostCauses];
    /// What to do about it: one sentence with its period.
    const char* nextStep;
};

/// The number of statuses.
std::size_t statusCount();

/// A status in the order of rgen_status.h; `index` is less than statusCount().
const StatusExplanation& statusAt(std::size_t index);

/// The explanation of a status; null for a number that is not a status.
const StatusExplanation* findStatus(RgenStatus status);

/// The library's description of any number; never null.
const char* statusText(RgenStatus status);

}  // namespace rgenh
