/*
 * Calls of strata_repgenlib that raise nothing, for hosts that cannot catch C++ exceptions.
 *
 * The functions that may raise one stand here once more, with "rgenGuarded_" in front. They do the
 * same, but where the library raises an exception they return RGEN_GUARDED_RAISED (the simulated
 * input: 0; the description: a fixed text) and write the reason to `failure`, which may be null.
 *
 * Build guarded_calls.cpp with a C++ compiler of the family that built the library, and link or
 * load it beside the library; take both files as they are, or make them yours.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef EXAMPLES_GUARDED_CALLS_H
#define EXAMPLES_GUARDED_CALLS_H

#include "strata_repgenlib/rgen.h"

#ifdef __cplusplus
extern "C" {
#endif

/** A status of these functions alone, 0xE0000001: the library raised an exception. */
enum RgenGuardedStatus { RGEN_GUARDED_RAISED = -0x1FFFFFFF };

/** Why a call raised. */
typedef struct RgenGuardedFailure {
    /** Zero-terminated; empty when the call raised nothing. */
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
