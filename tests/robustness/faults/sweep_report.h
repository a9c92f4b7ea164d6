// What both sweeps need: what a call has printed, and the report at the end.
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

// Prints the summary, fails for each problem, and adds the points to those of their kind.
void reportSweep(const std::string& scenario, const std::string& summary,
                 const std::vector<std::string>& problems, const std::string& kind,
                 std::size_t points);

}  // namespace rgen_test

#endif
