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

/// Keeps one generation registered under its report type until end(), so that rgen_cancel reaches
/// it. Every registration starts with a fresh token.
class GenerationRegistration {
public:
    /// Takes the generator's mutex for the insertion.
    GenerationRegistration(ReportGenerator& generator, const Guid& guid);
    /// As end(), for a generation that an exception ends; throws nothing.
    ~GenerationRegistration();
    GenerationRegistration(const GenerationRegistration&) = delete;
    GenerationRegistration& operator=(const GenerationRegistration&) = delete;

    const CancellationToken& token() const { return *token_; }

    /// Runs unregisterGeneration, once. Throws std::system_error where the mutex is refused.
    void end();

private:
    ReportGenerator& generator_;
    std::shared_ptr<CancellationTokenSource> source_;
    std::shared_ptr<CancellationToken> token_;
    std::string key_;
    bool isOver_ = false;
};

/// Erases the entry under `key` whose source is `source`, if it is still there; entries of other
/// generations under the same key stay. Takes the generator's mutex.
void unregisterGeneration(ReportGenerator& generator, const std::string& key,
                          const std::shared_ptr<CancellationTokenSource>& source);

/// Sets the flags of all registered generations of a report type and removes their entries. Takes
/// the generator's mutex.
void cancelGenerations(ReportGenerator& generator, const Guid& guid);

/// The same for every registered generation.
void cancelAllGenerations(ReportGenerator& generator);

}  // namespace rgen::sync
