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

/// Enough for templates that call one another 3,000 levels deep.
constexpr std::size_t reportStackBytes = std::size_t{8} * 1024 * 1024;
constexpr std::size_t cancellerStackBytes = std::size_t{512} * 1024;
constexpr std::int64_t cancelInterval = 20;

std::string dataDirPathOf(GeneratorSettings& settings) {
    if (settings.dataDirPath.empty()) {
        throw ArgumentError("the generator has no data directory: call rgenh_setDataDirPath first");
    }
    return settings.dataDirPath;
}

}  // namespace

ReportJob::ReportJob(GeneratorSettings& settings, std::shared_ptr<const Request> request)
    : settingsOwner_(settings.generator),
      request_(std::move(request)),
      dataDirPath_(dataDirPathOf(settings)),
      generator_(newGenerator()),
      translation_(generator_.get(), settings.translation->translator()) {
    error_.size = sizeof error_;
}

ReportJob::~ReportJob() {
    discardResult(result_);
}

void ReportJob::start(RgenhJob* handle, RgenhJobEndFunction ended, void* context) {
    // The thread begins by locking, so that everything is stored before it uses it.
    const Lock lock(state_);
    handle_ = handle;
    ended_ = ended;
    endedContext_ = context;
    auto owner = std::make_unique<std::shared_ptr<ReportJob>>(shared_from_this());
    if (!thread_.start(runThread, owner.get(), reportStackBytes)) throw std::bad_alloc();
    static_cast<void>(owner.release());
}

void ReportJob::runThread(void* job) {
    const std::unique_ptr<std::shared_ptr<ReportJob>> owner(
        static_cast<std::shared_ptr<ReportJob>*>(job));
    (*owner)->run();
}

void ReportJob::run() {
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
    const RgenStatus status = rgen_setDataDirPath(generator_.get(), dataDirPath_.c_str());
    if (status < 0) {
        record.setPath(dataDirPath_);
        record.sayStatus(dataDirPath_, status);
        return record.fail(RGENH_ERROR_STATUS, status);
    }
    translation_.connect();
    return generateReport(generator_.get(), request_->input, result_, record);
}

void ReportJob::finish() {
    RgenhJob* handle = nullptr;
    {
        const Lock lock(state_);
        hasEnded_ = true;
        handle = handle_;
        state_.notifyAll();
    }
    if (ended_ != nullptr && handle != nullptr) ended_(handle, endedContext_);
}

bool ReportJob::wait(std::int64_t milliseconds) {
    const std::int64_t start = platform::monotonicMilliseconds();
    const Lock lock(state_);
    while (!hasEnded_) {
        std::int64_t left = -1;
        if (milliseconds >= 0) {
            const std::int64_t passed = platform::monotonicMilliseconds() - start;
            if (passed >= milliseconds) return false;
            left = milliseconds - passed;
        }
        state_.wait(left);
    }
    return true;
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
            rgen_cancel(generator_.get(), nullptr);
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

bool ReportJob::isOwnThread() {
    const Lock lock(state_);
    if (threadNumber_ != platform::currentThread()) return false;
    handle_ = nullptr;
    return true;
}

void ReportJob::release() {
    try {
        cancel();
    } catch (const std::bad_alloc&) {
        // Without memory for a thread the report runs to its end.
    }
    const bool isOwn = isOwnThread();
    for (platform::Thread* const thread : {&thread_, &canceller_}) {
        if (!thread->isJoinable()) continue;
        if (isOwn) {
            thread->detach();
        } else {
            thread->join();
        }
    }
}

}  // namespace rgenh
