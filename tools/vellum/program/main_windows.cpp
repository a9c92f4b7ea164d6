// The entry point on Windows. The library's command line is read literally, any other as the C
// runtime splits it.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <exception>
#include <filesystem>

#include "base/message.h"
#include "process/guardian.h"
#include "program/literal_command_line.h"
#include "program/program.h"

int wmain(int argc, wchar_t** argv) {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    // Programs in the current folder must not take precedence over the search path.
    SetSearchPathMode(BASE_SEARCH_PATH_ENABLE_SAFE_SEARCHMODE | BASE_SEARCH_PATH_PERMANENT);
    if (argc == 2 && argv[1] == std::wstring(tools::guardianArgument)) {
        tools::runGuardian();
        return 0;
    }
    std::vector<std::wstring> wideArguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    if (auto literal = vellum::literalArguments(GetCommandLineW())) wideArguments = *literal;
    std::vector<std::string> arguments;
    try {
        for (const std::wstring& argument : wideArguments)
            arguments.push_back(std::filesystem::path(argument).u8string());
    } catch (const std::exception&) {
        vellum::printError("an argument is not valid UTF-16; write it anew");
        return 2;
    }
    return vellum::runProgram(arguments);
}
