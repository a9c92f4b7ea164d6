// Loading with dlopen. RGEN_TEST_LIBRARY is the path of the library of this build.
//
// SPDX-License-Identifier: MIT
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "abi/library_loader.h"

namespace rgen_test {

const long bytesKeptOfLoad = 0;
const long bytesKeptOfThread = 256;
const long handlesKeptOfThread = 0;

LoadedLibrary::LoadedLibrary() : handle_(dlopen(RGEN_TEST_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE(nullptr, handle_) << dlerror();
}

LoadedLibrary::~LoadedLibrary() {
    if (handle_ != nullptr) {
        EXPECT_EQ(0, dlclose(handle_));
    }
}

void* LoadedLibrary::address(const char* name) const {
    return dlsym(handle_, name);
}

bool libraryIsInMemory() {
    void* handle = dlopen(RGEN_TEST_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) {
        dlclose(handle);
    }
    return handle != nullptr;
}

}  // namespace rgen_test
