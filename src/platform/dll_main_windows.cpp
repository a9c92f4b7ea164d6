// Entry point of the Windows DLL. libxml2 releases what it keeps for each thread from here; it is
// linked statically and has no entry point of its own.
//
// SPDX-License-Identifier: MIT
#include <libxml/threads.h>
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved) {
    return xmlDllMain(module, reason, reserved);
}
