// The raw input dump: the names and display texts of typed values as an XML file.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "status.h"
#include "variant/variant.h"

namespace rgen {

struct ReportGenerator;

/// Replaces the file at `path`. Failures: RGEN_E_DELETE_DUMP (the old file stays),
/// RGEN_E_CREATE_PERSIST (the old file is removed). The generator is not used, no lock is taken.
Status writeRawInputDump(ReportGenerator& generator, const VariantMap& values,
                         const std::string& path);

}  // namespace rgen
