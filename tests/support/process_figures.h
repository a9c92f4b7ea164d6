// What this process holds of the system at the moment, for cases about growth, and how often such
// cases repeat their loops.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_PROCESS_FIGURES_H
#define RGEN_TESTS_SUPPORT_PROCESS_FIGURES_H

#include <cstddef>
#include <functional>
#include <string>

namespace rgen_test {

// Physical memory of this process in bytes, without what its C heap has ready for later: how much
// that is depends on the last large blocks, and not on what is kept.
long residentBytes();
// The middle one of several readings, the action being done before each.
long medianOfResidentBytes(const std::function<void()>& action);

// Grows by one with each descriptor (Linux) or handle (Windows) that is left open.
long openHandles();
// How much openHandles() may grow without a leak: locks make a handle of their own when threads
// first meet at them (Windows).
extern const long handlesOfLocks;

long threadCount();

// Children of this process that have ended and that nobody has collected. Always 0 on Windows.
long endedChildren();
// Children of this process that run or, on Linux, have ended. An ended one has closed its files.
long allChildren();

// False in sanitizer builds, whose own memory grows with everything that happens.
extern const bool memoryIsMeasured;

// The number of repetitions: the given one in a plain Linux build, fewer where everything takes
// longer, times RGEN_SOAK_FACTOR where the environment has that variable.
int loopCount(int plainCount);

// For tables of combinations: whether the one in that row and column is tried. In a plain Linux
// build all are, where everything takes longer every third one, so that no row or column is left out.
bool combinationIsTried(std::size_t row, std::size_t column);

// Prints a line that scripts/soak puts into its table.
void printGrowth(const std::string& what, long before, long after);
void printFigure(const std::string& what, long value);

}  // namespace rgen_test

#endif
