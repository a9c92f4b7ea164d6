// The public headers in C++, compiled as C++11, 14, 17 and 20. Nothing is included before them,
// they are included twice, and the functions keep their plain names. The statuses are constants of
// type RgenStatus that a host may use with every warning switched on. The functions of the host
// library do not throw, and the compiler knows it.
//
// SPDX-License-Identifier: MIT
#include "strata_repgenlib/rgen_host.h"
// Once more.
#include "strata_repgenlib/rgen.h"
#include "strata_repgenlib/rgen_host.h"
#include "strata_repgenlib/rgen_status.h"
#include "support/every_status.h"

namespace rgen_test {

template <typename T>
struct IsStatus {
    static constexpr bool value = false;
};
template <>
struct IsStatus<RgenStatus> {
    static constexpr bool value = true;
};

template <RgenStatus number>
struct StatusConstant {
    static constexpr RgenStatus value = number;
};

static_assert(sizeof(RgenStatus) == 4, "a status has 32 bits");
static_assert(RGEN_OK == 0 && RGEN_CANCELED < 0, "the statuses are constants");
static_assert(IsStatus<decltype(RGEN_OK)>::value, "success has the type of a status");
static_assert(IsStatus<decltype(RGEN_E_UNKNOWN)>::value, "a failure has the type of a status");
static_assert(StatusConstant<RGEN_CANCELED>::value == -2147483647, "a status is an argument");
static_assert(sizeof(RgenCInputParams) == 120, "the layout does not depend on the language");
static_assert(RGEN_VERSION_MAJOR + RGEN_VERSION_MINOR + RGEN_VERSION_PATCH >= 0, "numbers");

static_assert(sizeof(RgenhError) == RGENH_ERROR_SIZE, "the layout does not depend on the language");
static_assert(noexcept(rgenh_newReportGenerator(nullptr)), "the host library does not throw");
static_assert(noexcept(rgenh_getStatusText(RGEN_OK)), "the host library does not throw");
static_assert(noexcept(rgenh_textValue("", "")), "its plain functions do not throw");
static_assert(!noexcept(rgen_newReportGenerator()), "the first library may throw");

const char* nameOf(RgenStatus status);
RgenStatus useOfTheHostLibrary(const char* path, RgenhError& error);
RgenStatus useOfEveryKind(const char* path, const RgenCInputParams& input);

const char* nameOf(RgenStatus status) {
    for (const RgenDescribedStatus& row : everyStatus) {
        if (row.status == status) return row.name;
    }
    return nullptr;
}

RgenStatus useOfEveryKind(const char* path, const RgenCInputParams& input) {
    RgenTranslateFunction callback = nullptr;
    RgenCVariant result = {};
    RgenReportGenerator* generator = rgen_newReportGenerator();
    RgenStatus status = rgen_setDataDirPath(generator, path);
    rgen_setTranslateFunction(generator, callback, nullptr);
    if (status >= RGEN_OK) {
        status = rgen_generateReport(generator, &input, &result);
    }
    rgen_freeRgenCVariant(&result);
    rgen_freeReportGenerator(generator);
    return status;
}

RgenStatus useOfTheHostLibrary(const char* path, RgenhError& error) {
    const RgenhValue values[] = {rgenh_textValue("Device", "Disk"),
                                 rgenh_integerValue("Size", 1, RGEN_HINT_SIZE),
                                 rgenh_bytesValue("Serial", "1", 1)};
    RgenhRequestParts parts = {};
    parts.size = sizeof parts;
    parts.outputPath = path;
    parts.values = values;
    parts.valueCount = 3;
    RgenhJobEndFunction ended = nullptr;
    RgenReportGenerator* generator = rgenh_newReportGenerator(&error);
    RgenhRequest* request = rgenh_newRequest(&parts, &error);
    RgenhJob* job = rgenh_startReport(generator, request, ended, nullptr, &error);
    const RgenStatus status = rgenh_takeJobResult(job, nullptr, &error);
    rgenh_freeJob(job);
    rgenh_freeRequest(request);
    rgenh_freeReportGenerator(generator, &error);
    return error.kind == RGENH_ERROR_NONE ? RGEN_OK : status;
}

}  // namespace rgen_test
