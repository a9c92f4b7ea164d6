// The cancellation flag of one generation: the source sets it, the token observes it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <memory>

namespace rgen::sync {

/// Observes a request to stop. Passed to the steps of a generation, which cannot set it.
class CancellationToken {
public:
    /// An atomic load. Once true, it stays true.
    bool isCancellationRequested() const { return cancelled_; }

private:
    friend class CancellationTokenSource;
    std::atomic<bool> cancelled_ = false;
};

class CancellationTokenSource {
public:
    /// Sets the flag of the token; further calls have no effect.
    void cancel() { token_->cancelled_.exchange(true); }
    bool isCancellationRequested() const { return token_->isCancellationRequested(); }
    std::shared_ptr<CancellationToken> getToken() const { return token_; }

private:
    std::shared_ptr<CancellationToken> token_ = std::make_shared<CancellationToken>();
};

}  // namespace rgen::sync
