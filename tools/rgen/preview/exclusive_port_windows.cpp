// SPDX-License-Identifier: MIT
#include "preview/exclusive_port.h"

#include <winsock2.h>

namespace cli {

/// By default another program may take over a port that is in use.
void requireExclusivePort(std::uintptr_t socket) {
    const char yes[sizeof(int)] = {1};
    setsockopt(static_cast<SOCKET>(socket), SOL_SOCKET, SO_EXCLUSIVEADDRUSE, yes, sizeof yes);
}

}  // namespace cli
