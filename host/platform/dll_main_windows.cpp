// Entry point of the Windows DLL: lets the C++ runtime be freed when a host unloads it.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include "platform/runtime_end_windows.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE /*module*/, DWORD reason, LPVOID reserved) {
    if (reason == DLL_PROCESS_DETACH && reserved == nullptr) rgen::platform::noteUnloading();
    return TRUE;
}
