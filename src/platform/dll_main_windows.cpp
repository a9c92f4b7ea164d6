// Entry point of the Windows DLL. libxml2 is linked statically and has no entry point of its own:
// this one lets it free its data of each thread. The final clean-up is also called here, since
// libxml2 leaves it to programs that replace its memory functions.
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
