/*
 * The host library calls the first one through addresses that the system stores when it loads the
 * DLL. A program that is linked with the objects of both has to contain them.
 *
 * SPDX-License-Identifier: MIT
 */
#include "strata_repgenlib/rgen.h"

typedef void (*function)(void);

#define IMPORTED(name)                  \
    extern const function __imp_##name; \
    const function __imp_##name = (function)name;

IMPORTED(rgen_cancel)
IMPORTED(rgen_createRgenAnsiString)
IMPORTED(rgen_dumpRawInputDataToFile)
IMPORTED(rgen_freeReportGenerator)
IMPORTED(rgen_freeRgenCAnsiStringSet)
IMPORTED(rgen_freeRgenCVariant)
IMPORTED(rgen_generateReport)
IMPORTED(rgen_getPersistentData)
IMPORTED(rgen_getSimulatedRawDataFromFile)
IMPORTED(rgen_getStatusCodeDescription)
IMPORTED(rgen_newReportGenerator)
IMPORTED(rgen_setDataDirPath)
IMPORTED(rgen_setPersistentDataFromAnsiStringPairSet)
IMPORTED(rgen_setPersistentDataFromCVariantSet)
IMPORTED(rgen_setTranslateFunction)
