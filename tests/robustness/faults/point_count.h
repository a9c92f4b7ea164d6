// How many failures a program has tried.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_FAULTS_POINT_COUNT_H
#define RGEN_TESTS_FAULTS_POINT_COUNT_H

#include <cstddef>
#include <string>

namespace rgen_test {

// Adds points of one kind; the present case gets them as a property of that name. At the end of the
// program each kind is printed, and a run of all cases must have tried enough of it.
void countPoints(const std::string& kind, std::size_t points);

// Says how many points of a kind a run of all cases tries at least. For use at namespace level.
bool requirePoints(const std::string& kind, std::size_t least);

}  // namespace rgen_test

#endif
