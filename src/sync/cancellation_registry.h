// The registry of running generations: registration, removal and cancellation.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "report_generator.h"
#include "store/base/guid.h"
#include "sync/cancellation.h"

namespace rgen::sync {

/// Registers one generation under its report type until end(), so that rgen_cancel finds it. Each
/// registration has a new token.
class GenerationRegistration {
public:
    /// Locks the generator's mutex for the insertion.
    GenerationRegistration(ReportGenerator& generator, const Guid& guid);
    /// Calls end() if an exception has skipped it; does not throw.
    ~GenerationRegistration();
    GenerationRegistration(const GenerationRegistration&) = delete;
    GenerationRegistration& operator=(const GenerationRegistration&) = delete;

    const CancellationToken& token() const { return *token_; }

    /// Calls unregisterGeneration, once. Throws std::system_error if the mutex cannot be locked.
    void end();

private:
    ReportGenerator& generator_;
    std::shared_ptr<CancellationTokenSource> source_;
    std::shared_ptr<CancellationToken> token_;
    std::string key_;
    bool hasEnded_ = false;
};

/// Erases the entry with `key` and `source`, if it still exists; entries of other generations with
/// the same key stay. Locks the generator's mutex.
void unregisterGeneration(ReportGenerator& generator, const std::string& key,
                          const std::shared_ptr<CancellationTokenSource>& source);

/// Sets the flags of all registered generations of a report type and removes their entries. Locks
/// the generator's mutex.
void cancelGenerations(ReportGenerator& generator, const Guid& guid);

/// As cancelGenerations, for every registered generation.
void cancelAllGenerations(ReportGenerator& generator);

}  // namespace rgen::sync
