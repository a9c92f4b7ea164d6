// The targets. Each takes one input, runs it, and ends the process with abort() when something is
// wrong. A target is a function of its own name, so that one program can hold them all.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_FUZZ_FUZZ_TARGETS_H
#define RGEN_FUZZ_FUZZ_TARGETS_H

#include <string>

namespace rgen_fuzz {

// The input is a file.
void fuzzConfig(const std::string& input);
void fuzzPersistent(const std::string& input);
void fuzzSimulation(const std::string& input);
void fuzzTemplate(const std::string& input);

// The input is a text.
void fuzzMarkers(const std::string& input);
void fuzzByteDump(const std::string& input);
void fuzzGuid(const std::string& input);
void fuzzPath(const std::string& input);

// The input is read as a row of decisions (InputReader).
void fuzzValues(const std::string& input);
void fuzzCalls(const std::string& input);

}  // namespace rgen_fuzz

#endif
