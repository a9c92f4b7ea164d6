// A cancel of the library is lost if the report has not begun, and waits while a template is
// transformed. So a thread of its own repeats it until the job has ended.
//
// SPDX-License-Identifier: MIT
#include "job/report_job.h"

#include <cstring>
#include <mutex>
#include <new>
#include <utility>

#include "error/exception_report.h"
#include "error/failures.h"
#include "generator/active_calls.h"
#include "generator/report_call.h"

namespace rgenh {
namespace {

using Lock = std::lock_guard<platform::Monitor>;

constexpr std::size_t cancellerStackBytes = std::size_t{512} * 1024;
constexpr std::int64_t cancelInterval = 20;

std::string dataDirPathOf(GeneratorSettings& settings) {
    if (settings.dataDirPath.empty()) {
        throw ArgumentError("the generator has no data directory: call rgenh_setDataDirPath first",
                            1, ArgumentError::noEntry);
    }
    return settings.dataDirPath;
}

}  // namespace

ReportJob::ReportJob(GeneratorSettings& settings, std::shared_ptr<const Request> request)
    : settingsOwner_(settings.generator),
      request_(std::move(request)),
      dataDirPath_(dataDirPathOf(settings)),
      pool_(settings.workers),
      worker_(pool_->take()),
      translation_(worker_->generator(), settings.translation->translator()) {
    error_.size = sizeof error_;
}

ReportJob::~ReportJob() {
    discardResult(result_);
    // If it never started.
    if (task_ == 0 && !pool_->keep(worker_)) worker_->join();
}

void ReportJob::start(RgenhJob* handle, RgenhJobEndFunction ended, void* context) noexcept {
    // The worker begins by locking, so that everything is stored before it uses it.
    const Lock lock(state_);
    handle_ = handle;
    ended_ = ended;
    endedContext_ = context;
    task_ = worker_->give(shared_from_this());
}

void ReportJob::run() noexcept {
    bool isCancelled = false;
    {
        const Lock lock(state_);
        threadNumber_ = platform::currentThread();
        isCancelled = isCancelled_;
    }
    const RgenCInputParams& input = request_->input;
    const PassedText texts[] = {{0, "the data directory's path", dataDirPath_.c_str()},
                                {0, "the output path", input.outputPath.data},
                                {0, "the format", input.outputFormat.data},
                                {0, "the converter base", input.converterBaseArg.data},
                                {}};
    status_ = guarded(&error_, texts, [&](ErrorRecord& record) {
        if (!isCancelled) return generate(record);
        return reportStatus(input, RGEN_CANCELED, record);
    });
    finish();
}

RgenStatus ReportJob::generate(ErrorRecord& record) {
    // For the host, the callback's generator is the one with the settings.
    const ActiveCall call(settingsOwner_);
    const RgenStatus status = rgen_setDataDirPath(worker_->generator(), dataDirPath_.c_str());
    if (status < 0) {
        record.setPath(dataDirPath_);
        record.sayStatus(dataDirPath_, status);
        return record.fail(RGENH_ERROR_STATUS, status);
    }
    translation_.connect();
    return generateReport(worker_->generator(), request_->input, result_, record);
}

void ReportJob::finish() {
    RgenhJob* handle = nullptr;
    {
        const Lock lock(state_);
        // Before anybody learns of the end, so that the next job finds the worker idle.
        if (ended_ == nullptr) returnWorker();
        hasEnded_ = true;
        handle = handle_;
        state_.notifyAll();
    }
    if (ended_ == nullptr) return;
    if (handle != nullptr) ended_(handle, endedContext_);
    const Lock lock(state_);
    returnWorker();
}

/// Call with the lock held. The worker of a cancelled job ends: the cancel may still come, and must
/// not reach another job.
void ReportJob::returnWorker() {
    isWorkerReturned_ = true;
    if (isCancelled_) {
        worker_->stop();
    } else {
        isWorkerKept_ = pool_->keep(worker_);
    }
    const bool isFreed = handle_ == nullptr;
    if (isFreed && !isWorkerKept_) worker_->detach();
}

bool ReportJob::wait(std::int64_t milliseconds) {
    // The worker wakes its waiters once; those of an end function learn of the end before.
    if (ended_ == nullptr) return worker_->waitFor(task_, milliseconds);
    const Lock lock(state_);
    return state_.waitUntil([this] { return hasEnded_; }, milliseconds);
}

void ReportJob::cancel() {
    const Lock lock(state_);
    if (hasEnded_ || isCancelled_) return;
    isCancelled_ = true;
    auto owner = std::make_unique<std::shared_ptr<ReportJob>>(shared_from_this());
    if (!canceller_.start(runCanceller, owner.get(), cancellerStackBytes)) {
        isCancelled_ = false;
        throw std::bad_alloc();
    }
    static_cast<void>(owner.release());
}

void ReportJob::runCanceller(void* job) {
    const std::unique_ptr<std::shared_ptr<ReportJob>> owner(
        static_cast<std::shared_ptr<ReportJob>*>(job));
    (*owner)->cancelUntilEnd();
}

void ReportJob::cancelUntilEnd() {
    while (!wait(0)) {
        try {
            rgen_cancel(worker_->generator(), nullptr);
        } catch (const std::exception&) {
            // Memory is exhausted; the next round may have some.
        }
        wait(cancelInterval);
    }
}

RgenStatus ReportJob::take(RgenCVariant* result, RgenhError* error) {
    const Lock lock(state_);
    if (error != nullptr) {
        const std::uint64_t size = error->size;
        std::memcpy(error, &error_, sizeof error_);
        error->size = size;
    }
    if (result != nullptr && result_.type != RGEN_TYPE_EMPTY) {
        *result = std::exchange(result_, RgenCVariant{});
    }
    return status_;
}

bool ReportJob::wouldWaitForItself() {
    return ActiveCall::of(settingsOwner_) != nullptr && !wait(0);
}

/// Returns whether it did: not if the worker has returned, which is then joined without delay.
bool ReportJob::letGoInsideOfIt() {
    const bool isInCallback = wouldWaitForItself();
    const Lock lock(state_);
    const bool isOwnThread = threadNumber_ == platform::currentThread();
    if (isWorkerReturned_ || !(isOwnThread || isInCallback)) return false;
    handle_ = nullptr;
    return true;
}

void ReportJob::release() {
    try {
        cancel();
    } catch (const std::bad_alloc&) {
        // Without memory for a thread the report runs to its end.
    }
    if (letGoInsideOfIt()) {
        if (canceller_.isJoinable()) canceller_.detach();
        return;
    }
    worker_->waitFor(task_, -1);
    if (!isWorkerKept_) worker_->join();
    if (canceller_.isJoinable()) canceller_.join();
}

}  // namespace rgenh
