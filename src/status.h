// The status of an internal operation and the test for its failure.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "strata_repgenlib/rgen_status.h"

namespace rgen {

using Status = RgenStatus;

/// True for every negative status, including cancellation.
constexpr bool failed(Status status) {
    return status < 0;
}

}  // namespace rgen
