// The delete-on-close handle of Linux: a descriptor.
//
// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <cstdint>

#include "robustness/faults/fault_scenario.h"

namespace rgen_test {

std::string takeHandle(FaultSubject& subject) {
    if (subject.result.type != RGEN_TYPE_HANDLE) return {};
    const auto descriptor =
        static_cast<int>(reinterpret_cast<std::intptr_t>(subject.result.value.handleValue));
    std::string text(static_cast<std::size_t>(lseek(descriptor, 0, SEEK_END)), '\0');
    const ssize_t count = pread(descriptor, text.data(), text.size(), 0);
    text.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    close(descriptor);
    rgen_freeRgenCVariant(&subject.result);
    return text;
}

}  // namespace rgen_test
