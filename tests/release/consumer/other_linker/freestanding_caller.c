/*
 * A host of the host library without any C runtime, for compilers that link like Microsoft's. It
 * ends with code 42 when a failure is described as it should be, and a text is escaped.
 *
 * SPDX-License-Identifier: MIT
 */
#include "freestanding.h"
#include "strata_repgenlib/rgen_host.h"

/* Static: a function with more than a page of variables would call the C runtime. */
static RgenhError error;

int start(void) {
    RgenReportGenerator* generator;
    RgenAnsiString text;
    int isRight;
    error.size = sizeof error;
    generator = rgenh_newReportGenerator(&error);
    isRight = rgenh_setDataDirPath(generator, "there is no such folder", &error) ==
                  RGEN_E_DIR_NOT_FOUND &&
              error.kind == RGENH_ERROR_STATUS &&
              sameText(rgenh_getStatusName(error.status), "RGEN_E_DIR_NOT_FOUND");
    if (rgenh_escapeText("1 & 2", RGENH_NULL_TERMINATED, RGENH_PLAIN, RGENH_FOR_REPORT, &text,
                         &error) == RGEN_OK) {
        isRight = isRight && sameText(text.data, "1 &amp; 2");
        rgen_freeRgenAnsiString(&text);
    }
    rgenh_freeReportGenerator(generator, 0);
    return isRight && error.kind == RGENH_ERROR_NONE ? 42 : 1;
}
