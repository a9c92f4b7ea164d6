// Calls of the host library for the sweeps over allocations and over file operations.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_FAULTS_GUARDED_SCENARIOS_H
#define RGEN_TESTS_FAULTS_GUARDED_SCENARIOS_H

#include <cstdint>
#include <string>

#include "robustness/faults/fault_scenario.h"
#include "robustness/faults/guarded_errors.h"

namespace rgen_test {

// A stylesheet with the output method text and that body of its root template.
std::string textTemplate(const std::string& body);

// checkedMemory or checkedFileSystem.
using ErrorCheck = RgenStatus (*)(RgenStatus, const RgenhError&);

// A report of one text value "v", which is written to the file "report". The failures are those
// before the output.
FaultScenario guardedReport(const std::string& format, std::uint64_t mode, ErrorCheck check);

// Reads the stored texts; the product is their number.
FaultScenario guardedReading(ErrorCheck check);

// Stores one value; the product is the file.
FaultScenario guardedStoring(ErrorCheck check);

// Reads simulated input with one value; the product is the number of values.
FaultScenario guardedSimulation(ErrorCheck check);

}  // namespace rgen_test

#endif
