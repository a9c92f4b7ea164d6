// What the stand-in engine needs of its operating system. The program itself is in
// stand_in_engine.cpp, the two sources behind this header are stand_in_engine_windows.cpp and
// stand_in_engine_posix.cpp.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_VELLUM_STAND_IN_ENGINE_H
#define RGEN_TESTS_VELLUM_STAND_IN_ENGINE_H

#include <string>
#include <vector>

namespace stand_in_engine {

// The arguments of this process in UTF-8, the program's name first.
std::vector<std::string> arguments();

// The UTF-8 text of an environment variable, empty when it is not set.
std::string variable(const std::string& name);

// Starts this program once more with that argument.
void startCopy(const std::string& argument);

// Makes the file as its mark and keeps this process busy until it is ended, a minute at the
// longest.
void hang(const std::string& markPath);

}  // namespace stand_in_engine

#endif
