/*
 * A program whose linker gives the functions of the libraries addresses inside the program, since it
 * is linked to a fixed address and takes their addresses. The versions are those of the libraries
 * all the same.
 *
 * SPDX-License-Identifier: MIT
 */
#include <stdio.h>
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
    puts(versions.library);
    return strcmp(versions.library, "unknown") == 0 ? 5 : 0;
}
