/*
 * The public headers in C: compiled as C99 and as C11, both pedantic. Nothing is included before
 * them, they are included twice, and every kind of declaration in them is used.
 *
 * SPDX-License-Identifier: MIT
 */
#include "strata_repgenlib/rgen_host.h"
/* Once more. */
#include "strata_repgenlib/rgen.h"
#include "strata_repgenlib/rgen_host.h"
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

REQUIRE(error_size, sizeof(RgenhError) == RGENH_ERROR_SIZE);
REQUIRE(value_size, sizeof(RgenhValue) == 56);
REQUIRE(no_entry, RGENH_NO_ENTRY == UINT64_MAX && RGENH_NULL_TERMINATED == UINT64_MAX);
REQUIRE(kinds, RGENH_ERROR_NONE == 0 && RGENH_ERROR_UNKNOWN == 9);

RgenStatus rgenTestUse(const char* path, RgenCInputParams* input);
RgenStatus rgenTestHostUse(const char* path, RgenhError* error);
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

static void RGEN_CALL jobEnded(RgenhJob* job, void* context) {
    *(RgenhJob**)context = job;
}

RgenStatus rgenTestHostUse(const char* path, RgenhError* error) {
    const RgenhValue values[] = {rgenh_textValue("Device", "Disk"),
                                 rgenh_integerValue("Size", 1, RGEN_HINT_SIZE),
                                 rgenh_bytesValue("Serial", "1", 1)};
    RgenhRequestParts parts = {
        sizeof(RgenhRequestParts), 0, {0, 0, 0, {0}}, "txt", path, 0, 0, 0, values, 3, 0, 0};
    RgenhJobEndFunction ended = jobEnded;
    RgenhJob* last = 0;
    RgenReportGenerator* generator = rgenh_newReportGenerator(error);
    RgenhRequest* request = rgenh_newRequest(&parts, error);
    RgenhJob* job = rgenh_startReport(generator, request, ended, &last, error);
    RgenStatus status = rgenh_takeJobResult(job, 0, error);
    rgenh_freeJob(job);
    rgenh_freeRequest(request);
    (void)rgenh_freeReportGenerator(generator, error);
    return status < 0 && error->kind == RGENH_ERROR_STATUS ? error->status : RGEN_OK;
}
