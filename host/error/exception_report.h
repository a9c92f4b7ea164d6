// Turns the exceptions of the report library and of this one into error records.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "error/error_record.h"

namespace rgenh {

/// A text that a call passes to the library.
struct PassedText {
    /// The position of its argument, from 1 on.
    int argument;
    const char* name;
    /// May be null.
    const char* text;
};

/// Describes the exception that is being handled. An error of encoding names the first of `texts`
/// that is not UTF-8; they end with a null name. Returns the status of the record.
RgenStatus reportException(ErrorRecord& record, const PassedText* texts) noexcept;

/// Whether an exception can be thrown on the calling thread. The C++ runtime allocates memory for
/// the first one of a thread, and ends the process if there is none.
bool canThrow() noexcept;

/// Describes exhausted memory. Returns the status of the record.
RgenStatus reportMemory(ErrorRecord& record) noexcept;

/// Makes the function into which it is inlined keep the vector registers that belong to its caller.
/// On purpose: on Windows they are not always restored when an exception is caught, and hosts keep
/// values in them during calls. On Linux no register belongs to the caller, so this costs nothing.
[[gnu::always_inline]] inline void keepCallersRegisters() noexcept {
    asm volatile(""
                 :
                 :
                 : "xmm6", "xmm7", "xmm8", "xmm9", "xmm10", "xmm11", "xmm12", "xmm13", "xmm14",
                   "xmm15");
}

/// Runs `work`, which takes an ErrorRecord and returns a status; turns exceptions into errors.
template <typename Work>
RgenStatus guarded(RgenhError* error, const PassedText* texts, Work work) noexcept {
    ErrorRecord record(error);
    if (!record.isUsable()) return RGEN_E_BAD_PARAMETER;
    if (!canThrow()) return reportMemory(record);
    keepCallersRegisters();
    try {
        return work(record);
    } catch (...) {
        return reportException(record, texts);
    }
}

template <typename Work>
RgenStatus guarded(RgenhError* error, Work work) noexcept {
    return guarded(error, nullptr, work);
}

}  // namespace rgenh
