// The cancellation flag of one generation: the source sets it, the token observes it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <memory>

namespace rgen::sync {

/// Observes a request to stop. Given to the steps of a generation, which can see but not cause it.
class CancellationToken {
public:
    /// An atomic load; never resets.
    bool isCancellationRequested() const { return cancelled_; }

private:
    friend class CancellationTokenSource;
    std::atomic<bool> cancelled_ = false;
};

/// Owns a token. Both live on shared references.
class CancellationTokenSource {
public:
    /// Sets the flag; calling it again changes nothing.
    void cancel() { token_->cancelled_.exchange(true); }
    bool isCancellationRequested() const { return token_->isCancellationRequested(); }
    std::shared_ptr<CancellationToken> getToken() const { return token_; }

private:
    std::shared_ptr<CancellationToken> token_ = std::make_shared<CancellationToken>();
};

}  // namespace rgen::sync
