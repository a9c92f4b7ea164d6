// SPDX-License-Identifier: MIT
#include "preview/exclusive_port.h"

#include <sys/socket.h>

namespace cli {

/// The system refuses a second listener anyway. This option lets a preview start again on the port
/// of one that has just ended.
void requireExclusivePort(std::uintptr_t socket) {
    const int yes = 1;
    setsockopt(static_cast<int>(socket), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

}  // namespace cli
