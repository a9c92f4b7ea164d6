// Simulated input: typed values read from an XML file.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "status.h"
#include "variant/variant.h"

namespace rgen {

struct ReportGenerator;

/// Reads the valid properties of the file at `path` into `values`; others are skipped. RGEN_OK also
/// if all were skipped. Failures: RGEN_E_OPEN_SIMULATION (also for a null path),
/// RGEN_E_XPATH_CONTEXT, RGEN_E_XPATH_SEARCH, RGEN_E_NO_PERSIST_VALUES. The generator is not used.
Status readSimulatedRawInput(ReportGenerator& generator, const char* path, VariantMap& values);

/// Parses `text` as a value of the named kind. False for an unknown hint or kind and for an invalid
/// byte dump; `variant` is then unchanged.
bool parseVariant(const std::string& text, const std::string& canonicalName, VariantHint hint,
                  Variant& variant);

}  // namespace rgen
