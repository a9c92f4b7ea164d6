/*
 * Calls of strata_repgenlib that never throw, for hosts that cannot catch C++ exceptions.
 *
 * For each function that may throw there is one with the prefix "rgenGuarded_". It does the same,
 * but when the library throws an exception it returns RGEN_GUARDED_RAISED (for the simulated input
 * 0, for the description a fixed text) and writes the reason to `failure`, which may be null.
 *
 * Compile guarded_calls.cpp with the same family of C++ compilers as the library, and link it into
 * the host or a library of its own. You may change both files.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef EXAMPLES_GUARDED_CALLS_H
#define EXAMPLES_GUARDED_CALLS_H

#include "strata_repgenlib/rgen.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Status of these functions only, 0xE0000001: the library threw an exception. */
enum RgenGuardedStatus { RGEN_GUARDED_RAISED = -0x1FFFFFFF };

/** Why a call threw an exception. */
typedef struct RgenGuardedFailure {
    /** Null-terminated; empty when the call threw nothing. */
    char reason[256];
} RgenGuardedFailure;

RgenStatus rgenGuarded_setDataDirPath(RgenReportGenerator* generator, const char* path,
                                      RgenGuardedFailure* failure);

RgenStatus rgenGuarded_setTranslateFunction(RgenReportGenerator* generator,
                                            RgenTranslateFunction translate, void* context,
                                            RgenGuardedFailure* failure);

RgenStatus rgenGuarded_cancel(RgenReportGenerator* generator, const RgenGuid* guid,
                              RgenGuardedFailure* failure);

RgenStatus rgenGuarded_generateReport(RgenReportGenerator* generator, const RgenCInputParams* input,
                                      RgenCVariant* result, RgenGuardedFailure* failure);

RgenStatus rgenGuarded_getPersistentData(RgenReportGenerator* generator, const RgenGuid* guid,
                                         RgenCAnsiStringPairSet* pairs,
                                         RgenGuardedFailure* failure);

RgenStatus rgenGuarded_setPersistentDataFromAnsiStringPairSet(RgenReportGenerator* generator,
                                                              const RgenGuid* guid,
                                                              const RgenCAnsiStringPairSet* pairs,
                                                              RgenGuardedFailure* failure);

RgenStatus rgenGuarded_setPersistentDataFromCVariantSet(RgenReportGenerator* generator,
                                                        const RgenGuid* guid,
                                                        const RgenCVariantSet* variants,
                                                        RgenGuardedFailure* failure);

RgenStatus rgenGuarded_dumpRawInputDataToFile(RgenReportGenerator* generator,
                                              const RgenCInputParams* input, const char* path,
                                              RgenGuardedFailure* failure);

int32_t rgenGuarded_getSimulatedRawDataFromFile(RgenReportGenerator* generator, const char* path,
                                                RgenCVariantSet* variants,
                                                RgenGuardedFailure* failure);

const char* rgenGuarded_getStatusCodeDescription(const RgenReportGenerator* generator,
                                                 RgenStatus status);

#ifdef __cplusplus
}
#endif

#endif
