// What a user of rgen can do about a status, besides what the host library says for all hosts.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "strata_repgenlib/rgen.h"

namespace cli {

/// One sentence about the commands and options of rgen; empty if there is nothing to add.
const char* adviceOfRgen(RgenStatus status);

}  // namespace cli
