// The entry point on Windows. It takes the arguments as UTF-16, so that no code page touches them.
//
// SPDX-License-Identifier: MIT
#include <filesystem>

#include "program.h"

int wmain(int argc, wchar_t** argv) {
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i)
        arguments.push_back(std::filesystem::path(argv[i]).u8string());
    return cli::runProgram(arguments);
}
