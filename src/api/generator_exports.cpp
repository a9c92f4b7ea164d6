// The eleven generator exports. Each checks its pointers, converts records, forwards to one
// operation and converts back; exceptions pass through.
//
// SPDX-License-Identifier: MIT
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include "api/record_conversions.h"
#include "generate/generation_driver.h"
#include "platform/child_process.h"
#include "report_generator.h"
#include "store/data_directory.h"
#include "store/persistent_data.h"
#include "store/xml/parser_context.h"
#include "strata_repgenlib/rgen.h"
#include "sync/cancellation_registry.h"
#include "variant/raw_dump.h"
#include "variant/simulated_input.h"

namespace {

/// The object of a handle. Every call on a generator uses this function, so a converter that a
/// cancelled generation has abandoned is reaped by the next call after its end.
rgen::ReportGenerator& enter(RgenReportGenerator* generator) {
    rgen::platform::reapAbandonedProcesses();
    return *reinterpret_cast<rgen::ReportGenerator*>(generator);
}

}  // namespace

RgenReportGenerator* rgen_newReportGenerator(void) {
    rgen::platform::reapAbandonedProcesses();
    std::unique_ptr<rgen::ReportGenerator> generator(new (std::nothrow) rgen::ReportGenerator);
    if (!generator) return nullptr;
    generator->parserContext = rgen::sharedXmlParserContext();
    if (!generator->parserContext) return nullptr;
    return reinterpret_cast<RgenReportGenerator*>(generator.release());
}

void rgen_freeReportGenerator(RgenReportGenerator* generator) {
    if (generator == nullptr) return;
    delete &enter(generator);
}

RgenStatus rgen_setDataDirPath(RgenReportGenerator* generator, const char* path) {
    if (generator == nullptr || path == nullptr) return RGEN_E_BAD_PARAMETER;
    return rgen::setDataDir(enter(generator), path);
}

void rgen_setTranslateFunction(RgenReportGenerator* generator, RgenTranslateFunction translate,
                               void* context) {
    if (generator == nullptr || translate == nullptr) return;
    rgen::ReportGenerator& target = enter(generator);
    const std::lock_guard lock(target.mutex);
    target.translateFunction = translate;
    target.translateContext = context;
}

void rgen_cancel(RgenReportGenerator* generator, const RgenGuid* guid) {
    if (generator == nullptr) return;
    rgen::ReportGenerator& target = enter(generator);
    if (guid == nullptr) {
        rgen::sync::cancelAllGenerations(target);
    } else {
        rgen::sync::cancelGenerations(target, rgen::toGuid(*guid));
    }
}

RgenStatus rgen_generateReport(RgenReportGenerator* generator, const RgenCInputParams* input,
                               RgenCVariant* result) {
    if (generator == nullptr || input == nullptr || result == nullptr) return RGEN_E_BAD_PARAMETER;
    rgen::InputParams request = rgen::toInputParams(*input);
    const std::uint64_t outputMode = request.outputMode;
    rgen::Variant delivered;
    const rgen::Status status = rgen::generate(enter(generator), std::move(request), delivered);
    if (outputMode != rgen::output_mode::file && !rgen::failed(status)) {
        rgen::fillResult(delivered, result);
    }
    return status;
}

RgenStatus rgen_getPersistentData(RgenReportGenerator* generator, const RgenGuid* guid,
                                  RgenCAnsiStringPairSet* pairs) {
    if (generator == nullptr) return RGEN_E_BAD_PARAMETER;
    rgen::PropertyMap properties;
    const rgen::Status status =
        rgen::getPersistentData(enter(generator), rgen::toGuid(*guid), properties);
    // On purpose: the status is that of the read, also when memory for the pairs is exhausted.
    if (pairs != nullptr && !properties.empty()) {
        static_cast<void>(rgen::fillPairSet(properties, *pairs));
    }
    return status;
}

RgenStatus rgen_setPersistentDataFromAnsiStringPairSet(RgenReportGenerator* generator,
                                                       const RgenGuid* guid,
                                                       const RgenCAnsiStringPairSet* pairs) {
    // On purpose: handle and GUID are not checked.
    if (pairs == nullptr) return RGEN_E_BAD_PARAMETER;
    return rgen::setPersistentDataFromPairs(enter(generator), rgen::toGuid(*guid),
                                            rgen::toPropertyMap(*pairs));
}

RgenStatus rgen_setPersistentDataFromCVariantSet(RgenReportGenerator* generator,
                                                 const RgenGuid* guid,
                                                 const RgenCVariantSet* variants) {
    // On purpose: handle and GUID are not checked.
    if (variants == nullptr) return RGEN_E_BAD_PARAMETER;
    return rgen::setPersistentDataFromValues(enter(generator), rgen::toGuid(*guid),
                                             rgen::toVariantMap(*variants));
}

RgenStatus rgen_dumpRawInputDataToFile(RgenReportGenerator* generator,
                                       const RgenCInputParams* input, const char* path) {
    if (generator == nullptr || input == nullptr || path == nullptr ||
        input->variants.items == nullptr) {
        return RGEN_E_BAD_PARAMETER;
    }
    return rgen::writeRawInputDump(enter(generator), rgen::toVariantMap(input->variants), path);
}

int32_t rgen_getSimulatedRawDataFromFile(RgenReportGenerator* generator, const char* path,
                                         RgenCVariantSet* variants) {
    if (generator == nullptr || path == nullptr || variants == nullptr) return 0;
    rgen::VariantMap values;
    // On purpose: whatever went wrong, the host receives what was read.
    static_cast<void>(rgen::readSimulatedRawInput(enter(generator), path, values));
    return rgen::fillVariantSet(values, *variants) ? 1 : 0;
}
