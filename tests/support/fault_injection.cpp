// The list of the armed faults. Nothing here allocates memory while a call is counted.
//
// SPDX-License-Identifier: MIT
#include "support/fault_injection.h"

#include <atomic>

#include "support/test_platform.h"

namespace rgen_test {
namespace {

std::atomic<FailingCall*> newestCall = nullptr;

}  // namespace

FailingCall::FailingCall(std::initializer_list<Call> calls, std::size_t number, FailureForm form,
                         std::function<void()> action)
    : number_(number),
      form_(form),
      action_(std::move(action)),
      thread_(callingThread()),
      next_(newestCall) {
    for (const Call call : calls)
        calls_.set(static_cast<std::size_t>(call));
    newestCall = this;
}

FailingCall::~FailingCall() {
    newestCall = next_;
}

bool FailingCall::countsAsFailure(Call call) const {
    // Other threads may look at the list, but only the thread of the case may look at its count.
    if (thread_ != callingThread() || !calls_[static_cast<std::size_t>(call)]) return false;
    if (form_ == FailureForm::One && number_ != 0 && count_ >= number_) return false;
    ++count_;
    return number_ != 0 && count_ >= number_;
}

bool failsNow(Call call) {
    for (FailingCall* armed = newestCall; armed != nullptr; armed = armed->next_) {
        if (!armed->countsAsFailure(call)) continue;
        if (!armed->action_) return true;
        armed->action_();
    }
    return false;
}

}  // namespace rgen_test
