// Repeats a call with each of its file operations failing in turn.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_FAULTS_IO_SWEEP_POSIX_H
#define RGEN_TESTS_FAULTS_IO_SWEEP_POSIX_H

#include <functional>

#include "robustness/faults/fault_scenario.h"
#include "robustness/faults/io_faults_posix.h"

namespace rgen_test {

struct IoScenario {
    FaultScenario base;
    // True when a successful call may have made `product` instead of `whole` because of that fault;
    // empty when no fault allows that.
    std::function<bool(const IoFault&, const std::string& whole, const std::string& product)>
        mayMake;
    // Failures of the file system that the call documents as exceptions.
    bool mayThrow = true;
};

// Counts the file operations of a good call; then lets each of them fail in each way. Every time
// the call must end as the scenario documents it; no descriptor may stay open, no half file may
// stay unless it is the removal that fails, nothing may be printed; and the next call must be a
// good one.
void sweepFileOperations(const FaultFolder& files, const IoScenario& scenario);

}  // namespace rgen_test

#endif
