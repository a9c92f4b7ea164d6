// A report on a worker's thread, with the worker's generator, so that cancelling it stops no other.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "error/error_record.h"
#include "generator/generator_settings.h"
#include "generator/translator.h"
#include "generator/worker.h"
#include "platform/host_platform.h"
#include "request/request.h"
#include "strata_repgenlib/rgen_host.h"

namespace rgenh {

/// Shared by the host's handle and by the threads that run and cancel the job.
class ReportJob : public Worker::Task, public std::enable_shared_from_this<ReportJob> {
public:
    /// Takes the settings as they are now. Throws an ArgumentError if there is no data directory,
    /// and std::bad_alloc.
    ReportJob(GeneratorSettings& settings, std::shared_ptr<const Request> request);
    ~ReportJob() override;
    ReportJob(const ReportJob&) = delete;
    ReportJob& operator=(const ReportJob&) = delete;

    /// Lets the worker begin, which calls `ended(handle, context)` at the end unless `ended` is
    /// null. Call once.
    void start(RgenhJob* handle, RgenhJobEndFunction ended, void* context) noexcept;

    /// Called by the worker.
    void run() noexcept override;

    /// Returns whether the job has ended; a negative time waits for ever.
    bool wait(std::int64_t milliseconds);

    /// Whether waiting for the end would never end: a callback of the generator, which the job
    /// needs, is running on the calling thread.
    bool wouldWaitForItself();

    /// Waits for nothing.
    void cancel();

    /// Copies the error, moves the result if there is one and `result` is not null, and returns the
    /// status. Call after the end only.
    RgenStatus take(RgenCVariant* result, RgenhError* error);

    /// Cancels the job, and waits until no thread uses it; not in its end function, nor in a
    /// callback of its generator.
    void release();

private:
    static void runCanceller(void* job);
    RgenStatus generate(ErrorRecord& record);
    void finish();
    void returnWorker();
    void cancelUntilEnd();
    bool letGoInsideOfIt();

    const RgenReportGenerator* settingsOwner_;
    const std::shared_ptr<const Request> request_;
    const std::string dataDirPath_;
    platform::Thread canceller_;
    /// Guards the mutable members.
    platform::Monitor state_;
    std::uint64_t threadNumber_ = 0;
    bool isCancelled_ = false;
    bool hasEnded_ = false;
    bool isWorkerReturned_ = false;
    bool isWorkerKept_ = false;
    /// The number that the worker gave to this job; 0 before the start.
    std::uint64_t task_ = 0;
    /// Null when the host has freed it.
    RgenhJob* handle_ = nullptr;
    RgenhJobEndFunction ended_ = nullptr;
    void* endedContext_ = nullptr;
    RgenhError error_ = {};
    RgenStatus status_ = RGEN_E_UNKNOWN;
    RgenCVariant result_ = {};

    const std::shared_ptr<WorkerPool> pool_;
    /// After all members whose construction may fail: the destructor returns it.
    const std::shared_ptr<Worker> worker_;
    /// The worker's generator keeps it until the next job of the worker, and does not use it then.
    TranslatorUse translation_;
};

}  // namespace rgenh

/// A host's reference to a job.
struct RgenhJob {
    explicit RgenhJob(std::shared_ptr<rgenh::ReportJob> shared) : job(std::move(shared)) {}

    const std::shared_ptr<rgenh::ReportJob> job;
};
