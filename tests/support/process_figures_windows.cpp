// The figures of a process on Windows.
//
// SPDX-License-Identifier: MIT
#include <windows.h>
// Needs windows.h before it.
#include <psapi.h>
#include <tlhelp32.h>

#include <cstdint>
#include <cwchar>

#include "support/process_figures.h"

namespace rgen_test {

const long handlesOfLocks = 8;

long residentBytes() {
    HeapCompact(GetProcessHeap(), 0);
    PROCESS_MEMORY_COUNTERS counters = {};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return static_cast<long>(counters.WorkingSetSize);
}

// By asking for each handle number, since not every system has a count of them.
long openHandles() {
    constexpr int longestGap = 5000;
    long count = 0;
    int gap = 0;
    for (std::intptr_t number = 4; gap < longestGap; number += 4) {
        DWORD flags = 0;
        const bool isOpen = GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags) != 0;
        count += isOpen ? 1 : 0;
        gap = isOpen ? 0 : gap + 1;
    }
    return count;
}

long threadCount() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    long count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more != 0;
         more = Thread32Next(snapshot, &entry)) {
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    CloseHandle(snapshot);
    return count;
}

long endedChildren() {
    return 0;
}

long allChildren() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    long count = 0;
    for (BOOL more = Process32FirstW(snapshot, &entry); more != 0;
         more = Process32NextW(snapshot, &entry)) {
        // The system starts that one for a console, as a child of whoever has it.
        const bool isConsole = std::wcscmp(entry.szExeFile, L"conhost.exe") == 0;
        const bool isChild = entry.th32ParentProcessID == GetCurrentProcessId();
        count += isChild && !isConsole ? 1 : 0;
    }
    CloseHandle(snapshot);
    return count;
}

}  // namespace rgen_test
