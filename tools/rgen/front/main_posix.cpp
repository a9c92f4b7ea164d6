// The entry point on Linux.
//
// SPDX-License-Identifier: MIT
#include "front/program.h"

int main(int argc, char** argv) {
    return cli::runProgram(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
