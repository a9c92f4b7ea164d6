// Implemented in exclusive_port_posix.cpp and exclusive_port_windows.cpp.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace cli {

/// Makes sure that no other program can listen on the port of this socket at the same time.
void requireExclusivePort(std::uintptr_t socket);

}  // namespace cli
