// What all functions that take a generator check.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <initializer_list>

#include "error/error_record.h"
#include "error/exception_report.h"
#include "generator/active_calls.h"

namespace rgenh {

/// A pointer that a function received.
struct PassedPointer {
    const void* pointer;
    const char* name;
};

/// Whether this argument of a function is null; the record then says so.
inline bool isNull(const PassedPointer& passed, int argument, ErrorRecord& record) {
    if (passed.pointer != nullptr) return false;
    record.say(passed.name).say(" is null");
    record.failArgument(argument);
    return true;
}

/// Whether one of the first arguments of a function is null; the record then says which one.
inline bool hasNull(std::initializer_list<PassedPointer> pointers, ErrorRecord& record) {
    int argument = 0;
    for (const PassedPointer& passed : pointers) {
        if (isNull(passed, ++argument, record)) return true;
    }
    return false;
}

inline RgenStatus failReentered(ErrorRecord& record) {
    record.say("a translate callback called its own generator");
    return record.fail(RGENH_ERROR_REENTERED, RGEN_E_UNKNOWN);
}

/// Describes a negative status of the library; returns the status.
inline RgenStatus checkedStatus(ErrorRecord& record, std::string_view subject, RgenStatus status) {
    if (status >= 0) return status;
    record.sayStatus(subject, status);
    return record.fail(RGENH_ERROR_STATUS, status);
}

/// A guarded call for a generator, the first of `pointers`. `work` is not called if one of these is
/// null, or inside a callback of the generator.
template <typename Work>
RgenStatus generatorCall(RgenhError* error, std::initializer_list<PassedPointer> pointers,
                         const PassedText* texts, Work work) noexcept {
    return guarded(error, texts, [&](ErrorRecord& record) -> RgenStatus {
        if (hasNull(pointers, record)) return RGEN_E_BAD_PARAMETER;
        const auto* const generator =
            static_cast<const RgenReportGenerator*>(pointers.begin()->pointer);
        if (ActiveCall::of(generator) != nullptr) return failReentered(record);
        return work(record);
    });
}

}  // namespace rgenh
