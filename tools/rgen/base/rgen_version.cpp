// Taken from the public header, so that program and library are built with one version.
//
// SPDX-License-Identifier: MIT
#include "base/rgen_version.h"

#include "strata_repgenlib/rgen.h"

namespace cli {

std::string rgenVersion() {
    return std::to_string(RGEN_VERSION_MAJOR) + "." + std::to_string(RGEN_VERSION_MINOR) + "." +
           std::to_string(RGEN_VERSION_PATCH);
}

}  // namespace cli
