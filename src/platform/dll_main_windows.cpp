// Entry point of the Windows DLL. libxml2 releases what it keeps for each thread from here; it is
// linked statically and has no entry point of its own. Its clean-up at the end it leaves to those
// who give it memory functions.
//
// SPDX-License-Identifier: MIT
#include <libxml/parser.h>
#include <libxml/threads.h>
#include <windows.h>

#include "platform/runtime_end_windows.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved) {
    const BOOL result = xmlDllMain(module, reason, reserved);
    if (reason == DLL_PROCESS_DETACH) {
        xmlCleanupParser();
        if (reserved == nullptr) rgen::platform::noteUnloading();
    }
    return result;
}
