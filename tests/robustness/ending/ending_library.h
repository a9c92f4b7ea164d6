// The functions of the library that the ending host calls, linked or found by name.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_ENDING_ENDING_LIBRARY_H
#define RGEN_TESTS_ENDING_ENDING_LIBRARY_H

#include "strata_repgenlib/rgen.h"

namespace rgen_test {

// Calls `action` with each function as a member of EndingLibrary and its exported name.
#define RGEN_TEST_FUNCTIONS(action)                                         \
    action(newGenerator, rgen_newReportGenerator);                          \
    action(freeGenerator, rgen_freeReportGenerator);                        \
    action(setDataDirPath, rgen_setDataDirPath);                            \
    action(generate, rgen_generateReport);                                  \
    action(getPersistentData, rgen_getPersistentData);                      \
    action(setPersistentData, rgen_setPersistentDataFromAnsiStringPairSet); \
    action(simulate, rgen_getSimulatedRawDataFromFile);                     \
    action(describe, rgen_getStatusCodeDescription);                        \
    action(createText, rgen_createRgenAnsiString);                          \
    action(createPairs, rgen_createRgenCAnsiStringpairSet);                 \
    action(createValues, rgen_createRgenCVariantSet);                       \
    action(createNumber, rgen_createRgenCVariantInt64);                     \
    action(freeValue, rgen_freeRgenCVariant);                               \
    action(freeValues, rgen_freeRgenCVariantSet);                           \
    action(freePairs, rgen_freeRgenCAnsiStringSet);                         \
    action(freeInput, rgen_freeRgenCInputParams)

struct EndingLibrary {
#define RGEN_TEST_MEMBER(member, name) decltype(&name) member = nullptr
    RGEN_TEST_FUNCTIONS(RGEN_TEST_MEMBER);
#undef RGEN_TEST_MEMBER
};

// Finds all functions; false when one is missing. `path` names the library for a host that loads
// it.
bool openLibrary(const char* path, EndingLibrary& library);

// Loads the library at `path`, whose end calls `function`; false when it cannot be loaded.
bool loadLateLibrary(const char* path, void (*function)());

}  // namespace rgen_test

#endif
