// Opening a page on Windows, where a file that the C runtime opens cannot be deleted.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cerrno>
#include <system_error>

#include "page/page_file.h"

namespace vellum {

std::FILE* openDeletable(const std::filesystem::path& path) {
    constexpr DWORD everybody = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    HANDLE handle = CreateFileW(path.c_str(), GENERIC_READ, everybody, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        const std::error_code reason(static_cast<int>(GetLastError()), std::system_category());
        errno = reason.default_error_condition().value();
        return nullptr;
    }
    const int descriptor =
        _open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_RDONLY | _O_BINARY);
    if (descriptor < 0) {
        CloseHandle(handle);
        return nullptr;
    }
    std::FILE* const file = _fdopen(descriptor, "rb");
    if (file == nullptr) _close(descriptor);
    return file;
}

}  // namespace vellum
