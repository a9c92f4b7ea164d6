// The functions of a loaded library, found by name.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_ABI_LIBRARY_FUNCTIONS_H
#define RGEN_TESTS_ABI_LIBRARY_FUNCTIONS_H

#include <string>

#include "abi/library_loader.h"
#include "strata_repgenlib/rgen.h"
#include "support/temp_folder.h"

namespace rgen_test {

// All 26, in the order of the header.
extern const char* const exportedNames[26];

// The functions of one loaded library that the cases call.
struct Functions {
    explicit Functions(const LoadedLibrary& library);

    decltype(&rgen_newReportGenerator) newGenerator;
    decltype(&rgen_freeReportGenerator) freeGenerator;
    decltype(&rgen_setDataDirPath) setDataDirPath;
    decltype(&rgen_setTranslateFunction) setTranslate;
    decltype(&rgen_generateReport) generate;
    decltype(&rgen_getStatusCodeDescription) describe;
    decltype(&rgen_createRgenAnsiString) createText;
    decltype(&rgen_createRgenCVariantSet) createSet;
    decltype(&rgen_createRgenCVariantInt64) createInt64;
    decltype(&rgen_freeRgenCVariant) freeVariant;
    decltype(&rgen_freeRgenCInputParams) freeInput;
};

// One report with a data directory in that folder: the number 255 as an address after a translated
// text, which makes "[size] 0xff".
std::string reportThrough(const Functions& functions, const TempFolder& folder);

}  // namespace rgen_test

#endif
