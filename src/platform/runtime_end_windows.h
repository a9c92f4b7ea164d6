// Clean-up of the C++ runtime inside the Windows DLL.
//
// SPDX-License-Identifier: MIT
#pragma once

namespace rgen::platform {

/// Call on FreeLibrary, not at process exit: the C++ runtime then frees its TLS slot, handles and
/// exception reserve.
void noteUnloading();

}  // namespace rgen::platform
