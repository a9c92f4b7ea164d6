// Replacements of system calls of Windows. A call into a system DLL goes through a pointer in
// the import table, so the pointers are replaced.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include "support/fault_injection.h"

namespace rgen_test {

namespace {

BOOL WINAPI wrappedWriteFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD written,
                             LPOVERLAPPED overlapped);
BOOL WINAPI wrappedGetExitCodeProcess(HANDLE process, LPDWORD exitCode);

extern "C" {

extern const decltype(&wrappedWriteFile) realWriteFilePointer __asm__("__real___imp_WriteFile");
extern const decltype(&wrappedWriteFile) wrappedWriteFilePointer __asm__("__wrap___imp_WriteFile");
extern const decltype(&wrappedGetExitCodeProcess) realGetExitCodeProcessPointer __asm__(
    "__real___imp_GetExitCodeProcess");
extern const decltype(&wrappedGetExitCodeProcess) wrappedGetExitCodeProcessPointer __asm__(
    "__wrap___imp_GetExitCodeProcess");

const decltype(&wrappedWriteFile) wrappedWriteFilePointer = wrappedWriteFile;
const decltype(&wrappedGetExitCodeProcess) wrappedGetExitCodeProcessPointer =
    wrappedGetExitCodeProcess;

}  // extern "C"

BOOL WINAPI wrappedWriteFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD written,
                             LPOVERLAPPED overlapped) {
    if (failsNow(Call::WriteFileShort)) size /= 2;
    if (!failsNow(Call::WriteFile)) {
        return realWriteFilePointer(file, bytes, size, written, overlapped);
    }
    SetLastError(ERROR_WRITE_FAULT);
    return FALSE;
}

BOOL WINAPI wrappedGetExitCodeProcess(HANDLE process, LPDWORD exitCode) {
    if (!failsNow(Call::QueryExitCode)) return realGetExitCodeProcessPointer(process, exitCode);
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}

}  // namespace
}  // namespace rgen_test
