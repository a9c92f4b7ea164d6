// The library loaded at run time, and never unloaded.
//
// SPDX-License-Identifier: MIT
#include <cstring>

#include "robustness/ending/ending_library.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

template <typename Function>
bool find(void* library, const char* name, Function& function) {
    void* found = findSymbol(library, name);
    std::memcpy(&function, &found, sizeof function);
    return found != nullptr;
}

}  // namespace

bool openLibrary(const char* path, EndingLibrary& library) {
    void* handle = loadLibrary(path);
    bool isWhole = handle != nullptr;
#define RGEN_TEST_FOUND(member, name) isWhole = isWhole && find(handle, #name, library.member)
    RGEN_TEST_FUNCTIONS(RGEN_TEST_FOUND);
#undef RGEN_TEST_FOUND
    return isWhole;
}

bool loadLateLibrary(const char* path, void (*function)()) {
    void* handle = loadLibrary(path);
    void* place = handle != nullptr ? findSymbol(handle, "late_function") : nullptr;
    if (place != nullptr) std::memcpy(place, &function, sizeof function);
    return place != nullptr;
}

}  // namespace rgen_test
