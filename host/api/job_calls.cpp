// Jobs.
//
// SPDX-License-Identifier: MIT
#include <memory>
#include <mutex>

#include "api/call_checks.h"
#include "error/failures.h"
#include "generator/generator_settings.h"
#include "job/report_job.h"
#include "strata_repgenlib/rgen_host.h"

using namespace rgenh;

namespace {

std::shared_ptr<ReportJob> makeJob(RgenReportGenerator* generator, const RgenhRequest& request) {
    const std::shared_ptr<GeneratorSettings> settings = settingsOf(generator);
    if (settings == nullptr) {
        throw ArgumentError("the generator is not one of rgenh_newReportGenerator", 1,
                            ArgumentError::noEntry);
    }
    const std::lock_guard<platform::Monitor> fields(settings->fields);
    return std::make_shared<ReportJob>(*settings, request.request);
}

}  // namespace

extern "C" {

RgenhJob* RGEN_CALL rgenh_startReport(RgenReportGenerator* generator, const RgenhRequest* request,
                                      RgenhJobEndFunction ended, void* context,
                                      RgenhError* error) noexcept {
    std::unique_ptr<RgenhJob> handle;
    guarded(error, [&](ErrorRecord& record) -> RgenStatus {
        if (hasNull({{generator, "generator"}, {request, "request"}}, record)) {
            return RGEN_E_BAD_PARAMETER;
        }
        if (ActiveCall::of(generator) != nullptr) return failReentered(record);
        // The job may end, and the host free its handle, before start() returns.
        const std::shared_ptr<ReportJob> job = makeJob(generator, *request);
        auto next = std::make_unique<RgenhJob>(job);
        job->start(next.get(), ended, context);
        handle = std::move(next);
        return RGEN_OK;
    });
    return handle.release();
}

int32_t RGEN_CALL rgenh_waitForJob(RgenhJob* job, int64_t milliseconds,
                                   RgenhError* error) noexcept {
    return guarded(error, [&](ErrorRecord& record) -> RgenStatus {
        if (hasNull({{job, "job"}}, record)) return RGEN_E_BAD_PARAMETER;
        if (job->job->wouldWaitForItself()) return failReentered(record);
        return job->job->wait(milliseconds) ? 1 : 0;
    });
}

RgenStatus RGEN_CALL rgenh_cancelJob(RgenhJob* job, RgenhError* error) noexcept {
    return guarded(error, [&](ErrorRecord& record) -> RgenStatus {
        if (hasNull({{job, "job"}}, record)) return RGEN_E_BAD_PARAMETER;
        job->job->cancel();
        return RGEN_OK;
    });
}

RgenStatus RGEN_CALL rgenh_takeJobResult(RgenhJob* job, RgenCVariant* result,
                                         RgenhError* error) noexcept {
    const RgenStatus ready = guarded(error, [&](ErrorRecord& record) -> RgenStatus {
        if (hasNull({{job, "job"}}, record)) return RGEN_E_BAD_PARAMETER;
        if (job->job->wouldWaitForItself()) return failReentered(record);
        job->job->wait(-1);
        return RGEN_OK;
    });
    return ready < 0 ? ready : job->job->take(result, error);
}

void RGEN_CALL rgenh_freeJob(RgenhJob* job) noexcept {
    if (job == nullptr) return;
    const std::unique_ptr<RgenhJob> owned(job);
    job->job->release();
}
}
