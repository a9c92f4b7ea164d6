// Whatever fails after the library has delivered a result, the result is not lost without a trace:
// its memory is freed and its file closed.
//
// SPDX-License-Identifier: MIT
#include "generator/report_call.h"

#include <new>
#include <string_view>

#include "error/exception_report.h"
#include "generator/active_calls.h"
#include "pdf/pdf_check.h"
#include "platform/host_platform.h"
#include "text/guid_text.h"

namespace rgenh {
namespace {

/// A result that is discarded unless it is taken.
class PendingResult {
public:
    PendingResult() = default;
    ~PendingResult() { discardResult(record); }
    PendingResult(const PendingResult&) = delete;
    PendingResult& operator=(const PendingResult&) = delete;

    RgenCVariant take() {
        const RgenCVariant taken = record;
        record = {};
        return taken;
    }

    RgenCVariant record = {};
};

/// The library reports exhausted memory by empty parts of the record.
void requireWhole(const RgenCVariant& result) {
    const bool lacksBytes =
        result.type == RGEN_TYPE_BYTE_ARRAY && result.value.byteArrayValue.data == nullptr;
    const bool lacksName = result.type != RGEN_TYPE_EMPTY && result.name.data == nullptr;
    if (lacksBytes || lacksName) throw std::bad_alloc();
}

RgenStatus reportCallbackFailure(const ActiveCall& call, ErrorRecord& record) {
    if (call.isMemoryExhausted) return reportMemory(record);
    record.say(call.translatorFailure.empty() ? "the translate callback failed"
                                              : "a translation cannot be used: ");
    record.say(call.translatorFailure);
    return record.fail(RGENH_ERROR_CALLBACK, RGEN_E_UNKNOWN);
}

}  // namespace

RgenStatus generateReport(RgenReportGenerator* generator, const RgenCInputParams& input,
                          RgenCVariant& result, ErrorRecord& record, int argument) {
    const bool isPdf = isConverted(input);
    if (isPdf) prepareConversion(input, argument);
    ActiveCall call(generator);
    PendingResult pending;
    const RgenStatus status = rgen_generateReport(generator, &input, &pending.record);
    if (status < 0) return reportStatus(input, status, record);
    if (call.hasTranslatorFailed) return reportCallbackFailure(call, record);
    requireWhole(pending.record);
    if (isPdf) verifyConversion(input);
    if (pending.record.type != RGEN_TYPE_EMPTY) result = pending.take();
    return status;
}

RgenStatus reportStatus(const RgenCInputParams& input, RgenStatus status,
                        ErrorRecord& record) noexcept {
    const std::string_view path = input.outputPath.data == nullptr ? "" : input.outputPath.data;
    const bool hasFile = !path.empty() && input.outputMode != RGEN_OUTPUT_BYTES;
    if (hasFile) record.setPath(path);
    record.sayStatus(hasFile ? path : GuidText(input.templateGuid), status);
    return record.fail(RGENH_ERROR_STATUS, status);
}

void discardResult(RgenCVariant& result) noexcept {
    if (result.type == RGEN_TYPE_HANDLE) platform::closeFile(result.value.handleValue);
    rgen_freeRgenCVariant(&result);
}

}  // namespace rgenh
