// How much stack a piece of work uses.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace benchmarks {

/// Bytes of stack that `work` uses on a thread of its own, beyond what a thread uses that does
/// nothing; -1 where that cannot be measured.
long stackUsedBy(const std::function<void()>& work);

}  // namespace benchmarks
