// The shared library as a host without its import library uses it: loaded by file name, functions
// found by name, unloaded again.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_ABI_LIBRARY_LOADER_H
#define RGEN_TESTS_ABI_LIBRARY_LOADER_H

#include <cstring>

namespace rgen_test {

class LoadedLibrary {
public:
    // Loads the library of this build; a failure fails the test.
    LoadedLibrary();
    // Loads the library in that file.
    explicit LoadedLibrary(const char* path);
    ~LoadedLibrary();
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    bool isLoaded() const { return handle_ != nullptr; }
    // The address of an exported name, or null.
    void* address(const char* name) const;
    // The exported function of that name as a pointer of that type.
    template <typename Function>
    Function function(const char* name) const {
        void* found = address(name);
        Function result = nullptr;
        static_assert(sizeof result == sizeof found, "function pointers are as wide as pointers");
        std::memcpy(&result, &found, sizeof result);
        return result;
    }

private:
    void* handle_;
};

// True while the system still has the library in memory.
bool libraryIsInMemory();

}  // namespace rgen_test

#endif
