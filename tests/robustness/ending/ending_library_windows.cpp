// The library loaded with LoadLibrary, and never freed.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <cstring>

#include "robustness/ending/ending_library.h"

namespace rgen_test {
namespace {

template <typename Function>
bool find(HMODULE library, const char* name, Function& function) {
    const FARPROC found = GetProcAddress(library, name);
    std::memcpy(&function, &found, sizeof function);
    return found != nullptr;
}

}  // namespace

bool openLibrary(const char* path, EndingLibrary& library) {
    HMODULE handle = LoadLibraryA(path);
    bool isWhole = handle != nullptr;
#define RGEN_TEST_FOUND(member, name) isWhole = isWhole && find(handle, #name, library.member)
    RGEN_TEST_FUNCTIONS(RGEN_TEST_FOUND);
#undef RGEN_TEST_FOUND
    return isWhole;
}

bool loadLateLibrary(const char* /*path*/, void (* /*function*/)()) {
    return false;
}

}  // namespace rgen_test
