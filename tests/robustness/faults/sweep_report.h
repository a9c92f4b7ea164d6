// The results of a sweep: the number of failures that it tried, and the problems that it found.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_FAULTS_SWEEP_REPORT_H
#define RGEN_TESTS_FAULTS_SWEEP_REPORT_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace rgen_test {

// Bytes that standard output and standard error have got, inside captureConsole().
long printedBytes();

template <typename T>
bool contains(const std::vector<T>& list, const T& element) {
    return std::find(list.begin(), list.end(), element) != list.end();
}

// Adds points of failure of one kind; the present case gets them as a property of that name. At the
// end of the program each kind is printed, and a run of all cases must have tried enough of it.
void countPoints(const std::string& kind, std::size_t points);

// Says how many points of a kind a run of all cases tries at least. For use at namespace level.
bool requirePoints(const std::string& kind, std::size_t least);

// Prints the summary, fails for each problem, and adds the points to those of their kind.
void reportSweep(const std::string& scenario, const std::string& summary,
                 const std::vector<std::string>& problems, const std::string& kind,
                 std::size_t points);

}  // namespace rgen_test

#endif
