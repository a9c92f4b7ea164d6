// The entry point on Linux.
//
// SPDX-License-Identifier: MIT
#include "vellum_program.h"

int main(int argc, char** argv) {
    return vellum::runProgram(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
