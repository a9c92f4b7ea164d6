// A list of all running calls of the process. It is as long as the number of threads that use the
// library at one time, plus the calls inside callbacks.
//
// SPDX-License-Identifier: MIT
#include "generator/active_calls.h"

#include <atomic>

#include "lock/spin_lock.h"
#include "platform/host_platform.h"

namespace rgenh {
namespace {

std::atomic_flag listIsBusy = ATOMIC_FLAG_INIT;
ActiveCall* firstCall = nullptr;

}  // namespace

ActiveCall::ActiveCall(const RgenReportGenerator* generator) noexcept
    : generator_(generator), thread_(platform::currentThread()) {
    const rgen::sync::SpinLock lock(listIsBusy);
    next_ = firstCall;
    if (next_ != nullptr) next_->previous_ = this;
    firstCall = this;
}

ActiveCall::~ActiveCall() {
    const rgen::sync::SpinLock lock(listIsBusy);
    if (next_ != nullptr) next_->previous_ = previous_;
    (previous_ != nullptr ? previous_->next_ : firstCall) = next_;
}

ActiveCall* ActiveCall::of(const RgenReportGenerator* generator) noexcept {
    const std::uint64_t thread = platform::currentThread();
    const rgen::sync::SpinLock lock(listIsBusy);
    for (ActiveCall* call = firstCall; call != nullptr; call = call->next_) {
        if (call->thread_ == thread && call->generator_ == generator) return call;
    }
    return nullptr;
}

}  // namespace rgenh
