// The entry point on Windows. The arguments are UTF-16, so that no code page changes them.
//
// SPDX-License-Identifier: MIT
#include <cstdio>
#include <exception>
#include <filesystem>

#include "front/program.h"

int wmain(int argc, wchar_t** argv) {
    std::vector<std::string> arguments;
    try {
        for (int i = 1; i < argc; ++i)
            arguments.push_back(std::filesystem::path(argv[i]).u8string());
    } catch (const std::exception&) {
        std::fputs("rgen: an argument is not valid UTF-16; write it anew\n", stderr);
        return 2;
    }
    return cli::runProgram(arguments);
}
