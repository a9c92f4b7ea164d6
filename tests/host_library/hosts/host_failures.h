/*
 * Failures that the host library must turn into errors, for hosts in C and C++.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef RGEN_TESTS_HOST_LIBRARY_HOST_FAILURES_H
#define RGEN_TESTS_HOST_LIBRARY_HOST_FAILURES_H

#include "strata_repgenlib/rgen_host.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The functions that the host calls, linked or found in the loaded libraries. */
struct host_functions {
    RgenReportGenerator*(RGEN_CALL* new_generator)(RgenhError*);
    RgenStatus(RGEN_CALL* free_generator)(RgenReportGenerator*, RgenhError*);
    RgenStatus(RGEN_CALL* set_data_dir)(RgenReportGenerator*, const char*, RgenhError*);
    RgenStatus(RGEN_CALL* generate)(RgenReportGenerator*, const RgenCInputParams*, RgenCVariant*,
                                    RgenhError*);
    RgenhRequest*(RGEN_CALL* new_request)(const RgenhRequestParts*, RgenhError*);
    const RgenCInputParams*(RGEN_CALL* request_input)(const RgenhRequest*);
    void(RGEN_CALL* free_request)(RgenhRequest*);
    RgenhJob*(RGEN_CALL* start)(RgenReportGenerator*, const RgenhRequest*, RgenhJobEndFunction,
                                void*, RgenhError*);
    RgenStatus(RGEN_CALL* take)(RgenhJob*, RgenCVariant*, RgenhError*);
    void(RGEN_CALL* free_job)(RgenhJob*);
    void(RGEN_CALL* free_value)(RgenCVariant*);
};

/* Meets every failure once and makes a good report after each. `folder` contains the data directory
 * of a report type with the template "v". Returns null, or what went wrong. */
const char* meet_failures(const struct host_functions* functions, const char* folder);

#ifdef __cplusplus
}
#endif

#endif
