// Loading with LoadLibrary. RGEN_TEST_LIBRARY is the file name of the DLL beside this program.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <gtest/gtest.h>

#include "abi/library_loader.h"

namespace rgen_test {

const long bytesKeptOfLoad = 1280;
const long bytesKeptOfThread = 1536;
const long handlesKeptOfThread = 2;

LoadedLibrary::LoadedLibrary() : handle_(LoadLibraryA(RGEN_TEST_LIBRARY)) {
    EXPECT_NE(nullptr, handle_) << GetLastError();
}

LoadedLibrary::~LoadedLibrary() {
    if (handle_ != nullptr) {
        EXPECT_NE(0, FreeLibrary(static_cast<HMODULE>(handle_)));
    }
}

void* LoadedLibrary::address(const char* name) const {
    const FARPROC found = GetProcAddress(static_cast<HMODULE>(handle_), name);
    void* result = nullptr;
    std::memcpy(&result, &found, sizeof result);
    return result;
}

bool libraryIsInMemory() {
    return GetModuleHandleA(RGEN_TEST_LIBRARY) != nullptr;
}

}  // namespace rgen_test
