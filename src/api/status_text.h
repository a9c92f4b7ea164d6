// English descriptions of status values.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "status.h"

namespace rgen {

/// The description of `status`, or a fixed text for numbers that have none. Constant data, valid as
/// long as the library is loaded; the same pointer for the same number each time.
const char* statusText(Status status) noexcept;

/// The last step of statusText, for numbers without a description and without a failure bit.
const char* unknownCodeText(Status status) noexcept;

}  // namespace rgen
