/*
 * A program at a fixed address that takes the addresses of functions: its linker gives these
 * functions addresses inside the program. The versions must still be those of the libraries.
 *
 * SPDX-License-Identifier: MIT
 */
#include <string.h>

#include "strata_repgenlib/rgen_host.h"

static RgenReportGenerator*(RGEN_CALL* volatile const taken)(void) = rgen_newReportGenerator;
static RgenStatus(RGEN_CALL* volatile const taken_host)(RgenhVersions*,
                                                        RgenhError*) = rgenh_getVersions;

int main(void) {
    RgenhVersions versions = {0};
    versions.size = sizeof versions;
    if (taken == 0 || taken_host(&versions, 0) != RGEN_OK) return 1;
    if (strcmp(versions.library, versions.host) != 0) return 2;
    if (strstr(versions.libraryPath, "strata_repgenlib") == 0) return 3;
    if (strstr(versions.hostPath, "strata_repgenlib_host") == 0) return 4;
    return strcmp(versions.library, "unknown") == 0 ? 5 : 0;
}
