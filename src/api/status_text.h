// English descriptions of status values.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "status.h"

namespace rgen {

/// The description of `status`, or one of the fixed texts for numbers that have none. Static; the
/// same pointer for the same number each time.
const char* statusText(Status status);

/// The last step of statusText, for numbers without a description and without a failure bit.
const char* unknownCodeText(Status status);

}  // namespace rgen
