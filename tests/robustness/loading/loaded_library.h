/*
 * The library as a host in C loads it: the functions that the hosts of this folder call, and a
 * report.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef RGEN_TESTS_LOADING_LOADED_LIBRARY_H
#define RGEN_TESTS_LOADING_LOADED_LIBRARY_H

#include "strata_repgenlib/rgen.h"

#ifdef __cplusplus
extern "C" {
#endif

struct loaded_library {
    RgenReportGenerator* (*new_generator)(void);
    void (*free_generator)(RgenReportGenerator*);
    RgenStatus (*set_data_dir)(RgenReportGenerator*, const char*);
    RgenStatus (*generate)(RgenReportGenerator*, const RgenCInputParams*, RgenCVariant*);
    RgenStatus (*get_persistent)(RgenReportGenerator*, const RgenGuid*, RgenCAnsiStringPairSet*);
    int32_t (*simulate)(RgenReportGenerator*, const char*, RgenCVariantSet*);
    const char* (*describe)(const RgenReportGenerator*, RgenStatus);
    int32_t (*create_text)(const char*, RgenAnsiString*);
    void (*free_value)(RgenCVariant*);
    void (*free_values)(RgenCVariantSet*);
    void (*free_pairs)(RgenCAnsiStringPairSet*);
};

/* Loads the library; 0 when it cannot be loaded or lacks a function. */
int load_library(const char* path, struct loaded_library* library);

/* Makes a report of one number in the given folder. Takes no memory itself. */
RgenStatus make_report(const struct loaded_library* library, RgenReportGenerator* generator,
                       RgenCVariant* result);

/* 1 when a new generator makes the right report in that folder. */
int report_is_right(const struct loaded_library* library, const char* folder);

#ifdef __cplusplus
}
#endif

#endif
