// RGEN_TEST_LIBRARY is the library of this build: on Linux its path, on Windows the name of the DLL
// beside this program.
//
// SPDX-License-Identifier: MIT
#include "abi/library_loader.h"

#include <gtest/gtest.h>

#include "support/test_platform.h"

namespace rgen_test {

LoadedLibrary::LoadedLibrary() : LoadedLibrary(RGEN_TEST_LIBRARY) {}

LoadedLibrary::LoadedLibrary(const char* path) : handle_(loadLibrary(path)) {
    EXPECT_NE(nullptr, handle_) << lastLoadError();
}

LoadedLibrary::~LoadedLibrary() {
    if (handle_ != nullptr) {
        EXPECT_TRUE(unloadLibrary(handle_));
    }
}

void* LoadedLibrary::address(const char* name) const {
    return findSymbol(handle_, name);
}

bool libraryIsInMemory() {
    return isLibraryLoaded(RGEN_TEST_LIBRARY);
}

}  // namespace rgen_test
