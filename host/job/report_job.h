// A report with a thread and a generator of its own, so that cancelling it stops no other.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "error/error_record.h"
#include "generator/generator_settings.h"
#include "generator/owned_generator.h"
#include "generator/translator.h"
#include "platform/host_platform.h"
#include "request/request.h"
#include "strata_repgenlib/rgen_host.h"

namespace rgenh {

/// Shared by the host's handle and by the job's threads.
class ReportJob : public std::enable_shared_from_this<ReportJob> {
public:
    /// Takes the settings as they are now. Throws an ArgumentError if there is no data directory,
    /// and std::bad_alloc.
    ReportJob(GeneratorSettings& settings, std::shared_ptr<const Request> request);
    ~ReportJob();
    ReportJob(const ReportJob&) = delete;
    ReportJob& operator=(const ReportJob&) = delete;

    /// Starts the thread, which calls `ended(handle, context)` at its end unless `ended` is null.
    /// Throws std::bad_alloc if there can be no thread.
    void start(RgenhJob* handle, RgenhJobEndFunction ended, void* context);

    /// Returns whether the job has ended; a negative time waits for ever.
    bool wait(std::int64_t milliseconds);

    /// Waits for nothing.
    void cancel();

    /// Copies the error, moves the result if there is one and `result` is not null, and returns the
    /// status. Call after the end only.
    RgenStatus take(RgenCVariant* result, RgenhError* error);

    /// Cancels the job, and waits for its threads unless the calling thread is the job's.
    void release();

    /// The generator whose settings the job uses.
    const RgenReportGenerator* settingsOwner() const { return settingsOwner_; }

private:
    static void runThread(void* job);
    static void runCanceller(void* job);
    RgenStatus generate(ErrorRecord& record);
    void run();
    void finish();
    void cancelUntilEnd();
    bool isOwnThread();

    const RgenReportGenerator* settingsOwner_;
    const std::shared_ptr<const Request> request_;
    const std::string dataDirPath_;
    const OwnedGenerator generator_;
    TranslatorUse translation_;
    platform::Thread thread_;
    platform::Thread canceller_;

    /// Guards everything below.
    platform::Monitor state_;
    std::uint64_t threadNumber_ = 0;
    bool isCancelled_ = false;
    bool hasEnded_ = false;
    /// Null when the host has freed it.
    RgenhJob* handle_ = nullptr;
    RgenhJobEndFunction ended_ = nullptr;
    void* endedContext_ = nullptr;
    RgenhError error_ = {};
    RgenStatus status_ = RGEN_E_UNKNOWN;
    RgenCVariant result_ = {};
};

}  // namespace rgenh

/// A host's reference to a job.
struct RgenhJob {
    explicit RgenhJob(std::shared_ptr<rgenh::ReportJob> shared) : job(std::move(shared)) {}

    const std::shared_ptr<rgenh::ReportJob> job;
};
