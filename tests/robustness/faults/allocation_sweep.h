// Repeats a call with each of its allocations failing in turn.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_FAULTS_ALLOCATION_SWEEP_H
#define RGEN_TESTS_FAULTS_ALLOCATION_SWEEP_H

#include "robustness/faults/fault_scenario.h"

namespace rgen_test {

// Counts the allocations of a good call; then, for each of them, lets it fail alone, and lets it
// fail with all later ones. Every time the call must return the same as without a failure, one of
// the documented failures, std::bad_alloc or, if the scenario says so, less; nothing may stay
// allocated or be printed; and the generator must make good reports afterwards, the same call
// included.
void sweepAllocations(const FaultFolder& files, const FaultScenario& scenario);

}  // namespace rgen_test

#endif
