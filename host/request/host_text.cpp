// The one place that knows what the size of a text may be.
//
// SPDX-License-Identifier: MIT
#include "request/host_text.h"

#include <string>

#include "error/failures.h"
#include "strata_repgenlib/rgen_host.h"

namespace rgenh {
namespace {

[[noreturn]] void refuse(const char* what, const char* problem, int argument) {
    throw ArgumentError(std::string(what) + problem, argument, ArgumentError::noEntry);
}

}  // namespace

std::string_view hostText(const void* data, std::uint64_t size, const char* what, int argument) {
    if (data == nullptr) {
        if (size != 0) refuse(what, " is null", argument);
        return {};
    }
    const auto* const start = static_cast<const char*>(data);
    if (size == RGENH_NULL_TERMINATED) return start;
    // Before the text is read: the size of a careless host may lead out of its memory.
    if (size > longestSize) refuse(what, " is longer than 4,294,967,295 bytes", argument);
    const std::string_view text(start, size);
    if (text.find('\0') != std::string_view::npos) refuse(what, " contains a zero byte", argument);
    return text;
}

}  // namespace rgenh
