// Functions that need more stack than the calling thread may have.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>

namespace cli {

/// More than the deepest template that the XSLT processor allows needs.
inline constexpr std::size_t roomyStackSize = std::size_t{64} * 1024 * 1024;

/// Calls the function on another thread with so much stack and returns after it. Rethrows what it
/// throws. Throws std::system_error when the thread cannot be started.
void runWithRoomyStack(const std::function<void()>& function);

}  // namespace cli
