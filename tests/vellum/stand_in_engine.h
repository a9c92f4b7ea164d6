// What the stand-in engine (stand_in_engine.cpp) asks of the operating system.
// stand_in_engine_posix.cpp and stand_in_engine_windows.cpp implement it.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_VELLUM_STAND_IN_ENGINE_H
#define RGEN_TESTS_VELLUM_STAND_IN_ENGINE_H

#include <string>
#include <vector>

namespace stand_in_engine {

// The arguments of this process in UTF-8, including the name of the program.
std::vector<std::string> arguments();

// The value of an environment variable in UTF-8; empty when it is not set.
std::string variable(const std::string& name);

// Starts another process of this program with this argument.
void startCopy(const std::string& argument);

// Creates the file as a signal for the test, then waits to be killed, for at most a minute.
void hang(const std::string& markPath);

}  // namespace stand_in_engine

#endif
