// Each function is one call of the library inside guarded().
//
// SPDX-License-Identifier: MIT
#include "guarded_calls.h"

#include <cstring>
#include <exception>

namespace {

void setReason(RgenGuardedFailure* failure, const char* reason) noexcept {
    if (failure == nullptr) return;
    std::strncpy(failure->reason, reason, sizeof failure->reason - 1);
    failure->reason[sizeof failure->reason - 1] = '\0';
}

/// Returns the result of `call`, or `valueOnThrow` if it throws.
template <typename Result, typename Call>
Result guarded(RgenGuardedFailure* failure, Result valueOnThrow, Call call) noexcept {
    setReason(failure, "");
    try {
        return call();
    } catch (const std::exception& exception) {
        setReason(failure, exception.what());
    } catch (...) {
        setReason(failure, "unknown exception");
    }
    return valueOnThrow;
}

}  // namespace

RgenStatus rgenGuarded_setDataDirPath(RgenReportGenerator* generator, const char* path,
                                      RgenGuardedFailure* failure) {
    return guarded(failure, RgenStatus{RGEN_GUARDED_RAISED},
                   [&] { return rgen_setDataDirPath(generator, path); });
}

RgenStatus rgenGuarded_setTranslateFunction(RgenReportGenerator* generator,
                                            RgenTranslateFunction translate, void* context,
                                            RgenGuardedFailure* failure) {
    return guarded(failure, RgenStatus{RGEN_GUARDED_RAISED}, [&] {
        rgen_setTranslateFunction(generator, translate, context);
        return RgenStatus{RGEN_OK};
    });
}

RgenStatus rgenGuarded_cancel(RgenReportGenerator* generator, const RgenGuid* guid,
                              RgenGuardedFailure* failure) {
    return guarded(failure, RgenStatus{RGEN_GUARDED_RAISED}, [&] {
        rgen_cancel(generator, guid);
        return RgenStatus{RGEN_OK};
    });
}

RgenStatus rgenGuarded_generateReport(RgenReportGenerator* generator, const RgenCInputParams* input,
                                      RgenCVariant* result, RgenGuardedFailure* failure) {
    return guarded(failure, RgenStatus{RGEN_GUARDED_RAISED},
                   [&] { return rgen_generateReport(generator, input, result); });
}

RgenStatus rgenGuarded_getPersistentData(RgenReportGenerator* generator, const RgenGuid* guid,
                                         RgenCAnsiStringPairSet* pairs,
                                         RgenGuardedFailure* failure) {
    return guarded(failure, RgenStatus{RGEN_GUARDED_RAISED},
                   [&] { return rgen_getPersistentData(generator, guid, pairs); });
}

RgenStatus rgenGuarded_setPersistentDataFromAnsiStringPairSet(RgenReportGenerator* generator,
                                                              const RgenGuid* guid,
                                                              const RgenCAnsiStringPairSet* pairs,
                                                              RgenGuardedFailure* failure) {
    return guarded(failure, RgenStatus{RGEN_GUARDED_RAISED}, [&] {
        return rgen_setPersistentDataFromAnsiStringPairSet(generator, guid, pairs);
    });
}

RgenStatus rgenGuarded_setPersistentDataFromCVariantSet(RgenReportGenerator* generator,
                                                        const RgenGuid* guid,
                                                        const RgenCVariantSet* variants,
                                                        RgenGuardedFailure* failure) {
    return guarded(failure, RgenStatus{RGEN_GUARDED_RAISED}, [&] {
        return rgen_setPersistentDataFromCVariantSet(generator, guid, variants);
    });
}

RgenStatus rgenGuarded_dumpRawInputDataToFile(RgenReportGenerator* generator,
                                              const RgenCInputParams* input, const char* path,
                                              RgenGuardedFailure* failure) {
    return guarded(failure, RgenStatus{RGEN_GUARDED_RAISED},
                   [&] { return rgen_dumpRawInputDataToFile(generator, input, path); });
}

int32_t rgenGuarded_getSimulatedRawDataFromFile(RgenReportGenerator* generator, const char* path,
                                                RgenCVariantSet* variants,
                                                RgenGuardedFailure* failure) {
    return guarded(failure, int32_t{0},
                   [&] { return rgen_getSimulatedRawDataFromFile(generator, path, variants); });
}

const char* rgenGuarded_getStatusCodeDescription(const RgenReportGenerator* generator,
                                                 RgenStatus status) {
    if (status == RGEN_GUARDED_RAISED) return "The library raised an exception.";
    return guarded(nullptr, "No memory for the description.",
                   [&] { return rgen_getStatusCodeDescription(generator, status); });
}
