// Waiting for a moment without sleep. An idle processor needs as long to wake up for a thread as a
// small report takes.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/host_platform.h"

namespace rgenh {

/// Returns when `condition()` is true or the time is over. Returns at once if another thread waits
/// with the same `turn`, so that no more than one processor is busy with it, and if the process has
/// only one, which the other thread needs.
template <typename Condition>
void waitBriefly(std::atomic_flag& turn, Condition condition, std::int64_t microseconds) noexcept {
    if (platform::processorCount() < 2 || turn.test_and_set(std::memory_order_acquire)) return;
    const std::int64_t end = platform::monotonicMicroseconds() + microseconds;
    while (!condition() && platform::monotonicMicroseconds() < end)
        __builtin_ia32_pause();
    turn.clear(std::memory_order_release);
}

}  // namespace rgenh
