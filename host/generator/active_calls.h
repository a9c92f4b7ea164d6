// The calls that run on each thread, so that a callback that calls its own generator gets an error
// instead of waiting for itself.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "strata_repgenlib/rgen.h"

namespace rgenh {

/// A running call of the calling thread for a generator, from construction to destruction. Needs no
/// memory, and no storage of the thread: that would stay when the library is unloaded.
class ActiveCall {
public:
    explicit ActiveCall(const RgenReportGenerator* generator) noexcept;
    ~ActiveCall();
    ActiveCall(const ActiveCall&) = delete;
    ActiveCall& operator=(const ActiveCall&) = delete;

    /// The newest call of the calling thread for the generator; null if there is none.
    static ActiveCall* of(const RgenReportGenerator* generator) noexcept;

    /// Set by the translator of the call, on the same thread.
    bool hasTranslatorFailed = false;
    /// The translation could not be made, since there was no memory.
    bool isMemoryExhausted = false;
    /// Why it failed otherwise; empty if the callback itself failed.
    std::string translatorFailure;

private:
    const RgenReportGenerator* generator_;
    std::uint64_t thread_;
    ActiveCall* next_;
    ActiveCall* previous_ = nullptr;
};

}  // namespace rgenh
