// The delete-on-close handle of Windows, which is for writing only: its size stands for the
// content.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include "robustness/faults/fault_scenario.h"

namespace rgen_test {

std::string takeHandle(FaultSubject& subject) {
    if (subject.result.type != RGEN_TYPE_HANDLE) return {};
    LARGE_INTEGER size = {};
    GetFileSizeEx(subject.result.value.handleValue, &size);
    CloseHandle(subject.result.value.handleValue);
    rgen_freeRgenCVariant(&subject.result);
    return std::to_string(size.QuadPart) + " bytes";
}

}  // namespace rgen_test
