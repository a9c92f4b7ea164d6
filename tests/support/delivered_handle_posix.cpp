// Delete-on-close files on Linux: descriptors for reading and writing.
//
// SPDX-License-Identifier: MIT
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>

#include "support/delivered_handle.h"

namespace rgen_test {

bool closesOnBytes(void* handle, const std::string& bytes) {
    const auto descriptor = static_cast<int>(reinterpret_cast<std::intptr_t>(handle));
    struct stat status = {};
    const bool known = fstat(descriptor, &status) == 0;
    std::string content(known ? static_cast<std::size_t>(status.st_size) : 0, '\0');
    const bool read = pread(descriptor, content.data(), content.size(), 0) == status.st_size;
    const bool closed = close(descriptor) == 0;
    return known && read && closed && status.st_nlink == 0 && content == bytes;
}

}  // namespace rgen_test
