/*
 * The public header in C: compiled as C99 and as C11, both pedantic. Nothing is included before it,
 * it is included twice, and every kind of declaration in it is used.
 *
 * SPDX-License-Identifier: MIT
 */
#include "strata_repgenlib/rgen.h"
#include "strata_repgenlib/rgen_status.h"
#include "support/every_status.h"

#if RGEN_VERSION_MAJOR < 0 || RGEN_VERSION_MINOR < 0 || RGEN_VERSION_PATCH < 0
#error "the version macros must be numbers"
#endif

/* A negative array size stops the compilation; C99 has no static assertion. */
#define REQUIRE(name, condition) typedef char require_##name[(condition) ? 1 : -1]

REQUIRE(status_size, sizeof(RgenStatus) == 4);
REQUIRE(ok_is_zero, RGEN_OK == 0);
REQUIRE(failures_are_negative, RGEN_E_BAD_PARAMETER < 0 && RGEN_CANCELED < 0);
REQUIRE(guid_size, sizeof(RgenGuid) == 16);
REQUIRE(input_size, sizeof(RgenCInputParams) == 120);
REQUIRE(types, RGEN_TYPE_INT64 == 1 && RGEN_TYPE_HANDLE == 4);
REQUIRE(hints, RGEN_HINT_GENERIC == 1 && RGEN_HINT_DUMP == 8);
REQUIRE(modes, RGEN_OUTPUT_FILE == 0 && RGEN_OUTPUT_BYTES == 2);

RgenStatus rgenTestUse(const char* path, RgenCInputParams* input);
const char* rgenTestName(RgenStatus status);

/* A constant initialiser, an array size and an enumerator. */
static const RgenStatus failures[] = {RGEN_E_BAD_PARAMETER, RGEN_CANCELED};
REQUIRE(array_size, sizeof(char[RGEN_OK + 1]) == 1);
enum RgenTestStatus { RGEN_TEST_UNKNOWN = RGEN_E_UNKNOWN };
REQUIRE(values, RGEN_TEST_UNKNOWN == -1073676289 && RGEN_CANCELED == -2147483647);

/* The array uses every status as a constant. */
const char* rgenTestName(RgenStatus status) {
    if (status == everyStatus[0].status) return everyStatus[0].name;
    return status == failures[0] ? "a failure" : 0;
}

static const char* RGEN_CALL translate(const char* text, void* context) {
    (void)context;
    return text;
}

RgenStatus rgenTestUse(const char* path, RgenCInputParams* input) {
    RgenTranslateFunction callback = translate;
    RgenCVariant result = {{0, 0}, {0}, 0, 0};
    RgenReportGenerator* generator = rgen_newReportGenerator();
    RgenStatus status = rgen_setDataDirPath(generator, path);
    rgen_setTranslateFunction(generator, callback, 0);
    if (status >= RGEN_OK) {
        status = rgen_generateReport(generator, input, &result);
    }
    rgen_freeRgenCVariant(&result);
    rgen_freeReportGenerator(generator);
    return status;
}
