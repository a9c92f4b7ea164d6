// The end of the C++ runtime inside the Windows DLL.
//
// SPDX-License-Identifier: MIT
#pragma once

namespace rgen::platform {

/// Says that the DLL leaves a process that goes on, so that the runtime is to leave nothing behind.
void noteUnloading();

}  // namespace rgen::platform
