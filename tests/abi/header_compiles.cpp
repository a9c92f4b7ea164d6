// The public header in C++, compiled as C++11, 14, 17 and 20. Nothing is included before it, it is
// included twice, and the functions keep their plain names.
//
// SPDX-License-Identifier: MIT
#include "strata_repgenlib/rgen.h"
#include "strata_repgenlib/rgen_status.h"

static_assert(sizeof(RgenStatus) == 4, "a status has 32 bits");
static_assert(RGEN_OK == 0 && RGEN_CANCELED < 0, "the statuses are constants");
static_assert(sizeof(RgenCInputParams) == 120, "the layout does not depend on the language");
static_assert(RGEN_VERSION_MAJOR + RGEN_VERSION_MINOR + RGEN_VERSION_PATCH >= 0, "numbers");

namespace rgen_test {

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

}  // namespace rgen_test
