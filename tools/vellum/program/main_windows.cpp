// The entry point on Windows. The library's own command line is taken literally, everything else as
// the C runtime takes it apart.
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
    // No program of the current folder before one of the search path.
    SetSearchPathMode(BASE_SEARCH_PATH_ENABLE_SAFE_SEARCHMODE | BASE_SEARCH_PATH_PERMANENT);
    if (argc == 2 && argv[1] == std::wstring(tools::guardianWord)) {
        tools::removeWhatStandardInputNames();
        return 0;
    }
    std::vector<std::wstring> words(argv + (argc > 0 ? 1 : 0), argv + argc);
    if (auto literal = vellum::literalArguments(GetCommandLineW())) words = *literal;
    std::vector<std::string> arguments;
    try {
        for (const std::wstring& word : words)
            arguments.push_back(std::filesystem::path(word).u8string());
    } catch (const std::exception&) {
        vellum::say("an argument is not valid UTF-16; write it anew");
        return 2;
    }
    return vellum::runProgram(arguments);
}
