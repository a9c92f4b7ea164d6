// The 26 functions by name, called through pointers, and the library's way in and out of a process.
//
// This program does not link the library, so the last handle unloads it.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "abi/library_functions.h"
#include "abi/library_loader.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::exportedNames;
using rgen_test::Functions;
using rgen_test::LoadedLibrary;
using rgen_test::reportThrough;
using rgen_test::TempFolder;

TEST(LoadedLibrary, HasEachFunctionUnderItsPlainName) {
    const LoadedLibrary library;
    ASSERT_TRUE(library.isLoaded());
    for (const char* name : exportedNames) {
        EXPECT_NE(nullptr, library.address(name)) << name;
    }
}

TEST(LoadedLibrary, HidesWhatItIsMadeOf) {
    const LoadedLibrary library;
    ASSERT_TRUE(library.isLoaded());
    for (const char* name : {"xmlReadFile", "xmlFree", "xsltApplyStylesheet", "xmlInitParser",
                             "rgen_createRgenCAnsiStringPairSet", "rgen_freeRgenCAnsiStringPairSet",
                             "_rgen_cancel", "rgen_generateReport@24"}) {
        EXPECT_EQ(nullptr, library.address(name)) << name;
    }
}

TEST(LoadedLibrary, WorksThroughFunctionPointers) {
    const LoadedLibrary library;
    ASSERT_TRUE(library.isLoaded());
    const TempFolder folder;
    EXPECT_EQ("[size] 0xff", reportThrough(Functions(library), folder));
}

TEST(LoadedLibrary, LeavesTheProcessWithItsLastHandle) {
    {
        const LoadedLibrary first;
        const LoadedLibrary second;
        ASSERT_TRUE(first.isLoaded());
        EXPECT_EQ(first.address("rgen_cancel"), second.address("rgen_cancel"));
        EXPECT_TRUE(rgen_test::libraryIsInMemory());
    }
    EXPECT_FALSE(rgen_test::libraryIsInMemory());
}

}  // namespace
