// What calls of the host library say about an injected failure.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_FAULTS_GUARDED_ERRORS_H
#define RGEN_TESTS_FAULTS_GUARDED_ERRORS_H

#include "strata_repgenlib/rgen_host.h"

namespace rgen_test {

inline RgenhError newError() {
    RgenhError error = {};
    error.size = sizeof error;
    return error;
}

// The status. One that no scenario expects if the record does not agree with it, or if a failure
// without a status is not one of memory.
inline RgenStatus checkedMemory(RgenStatus status, const RgenhError& error) {
    const bool isMemory = error.kind == RGENH_ERROR_MEMORY && error.message[0] != '\0';
    if (status == RGEN_E_UNKNOWN && !isMemory) return RGEN_E_BAD_PARAMETER;
    return status != error.status ? RGEN_E_BAD_PARAMETER : status;
}

// The same where a failure without a status must be one of the file system, with its number.
inline RgenStatus checkedFileSystem(RgenStatus status, const RgenhError& error) {
    const bool isFileSystem = error.kind == RGENH_ERROR_FILE_SYSTEM && error.systemError != 0;
    const bool isConversion = error.kind == RGENH_ERROR_CONVERSION;
    if (status == RGEN_E_UNKNOWN && !isFileSystem) return RGEN_E_BAD_PARAMETER;
    if (status == RGEN_E_EXTERNAL_FAILED && !isConversion) return RGEN_E_BAD_PARAMETER;
    return status != error.status ? RGEN_E_BAD_PARAMETER : status;
}

}  // namespace rgen_test

#endif
