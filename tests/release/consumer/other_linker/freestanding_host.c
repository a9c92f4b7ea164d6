/*
 * A host without any C runtime, for compilers that link like Microsoft's. It ends with code 42 when
 * the library describes a status as it should.
 *
 * SPDX-License-Identifier: MIT
 */
#include "freestanding.h"
#include "strata_repgenlib/rgen.h"

int start(void) {
    RgenReportGenerator* generator = rgen_newReportGenerator();
    const RgenStatus status = rgen_setDataDirPath(generator, "there is no such folder");
    const char* description = rgen_getStatusCodeDescription(generator, status);
    const int isRight =
        status == RGEN_E_DIR_NOT_FOUND && sameText(description, "Given dir path is not exist");
    RgenAnsiString text;
    const int isCreated = rgen_createRgenAnsiString("text", &text) && text.length == 4;
    rgen_freeRgenAnsiString(&text);
    rgen_freeReportGenerator(generator);
    return isRight && isCreated ? 42 : 1;
}
