// Delete-on-close files on Windows: handles for writing only.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include "support/delivered_handle.h"

namespace rgen_test {

bool closesOnBytes(void* handle, const std::string& bytes) {
    LARGE_INTEGER size = {};
    const bool known = GetFileSizeEx(handle, &size) != 0;
    const bool closed = CloseHandle(handle) != 0;
    return known && closed && size.QuadPart == static_cast<LONGLONG>(bytes.size());
}

}  // namespace rgen_test
