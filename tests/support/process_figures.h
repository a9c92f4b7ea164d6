// For cases about growth: readings of test_platform.h, and how often such cases repeat their loops.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_PROCESS_FIGURES_H
#define RGEN_TESTS_SUPPORT_PROCESS_FIGURES_H

#include <cstddef>
#include <functional>
#include <string>

#include "support/test_platform.h"

namespace rgen_test {

// The median of several readings of residentBytes(), with the action before each.
long medianOfResidentBytes(const std::function<void()>& action);

// False in sanitizer builds, whose own memory grows with everything that happens.
extern const bool memoryIsMeasured;

// The number of repetitions: `plainCount` in a plain Linux build, fewer where everything takes
// longer, times RGEN_SOAK_FACTOR where the environment has that variable.
int loopCount(int plainCount);

// For tables of combinations: whether the one in that row and column is tried. All are, except
// under the thread sanitizer, where every third one is: no row or column is left out.
bool combinationIsTried(std::size_t row, std::size_t column);

// Prints a line that scripts/soak puts into its table.
void printGrowth(const std::string& what, long before, long after);
void printFigure(const std::string& what, long value);

}  // namespace rgen_test

#endif
