// Checks the converter's work, since the library ignores its exit code.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "strata_repgenlib/rgen.h"

namespace rgenh {

/// Whether a report is a file that the converter makes.
bool isConverted(const RgenCInputParams& input);

/// Throws an ArgumentError for a double quote in the path or base, which would break the
/// converter's command line, and removes the error text of an earlier conversion, which would be
/// taken for one of this conversion. A failure to remove it is ignored. `argument` is the position
/// of the input in the host's call, or 0.
void prepareConversion(const RgenCInputParams& input, int argument);

/// Throws a ConversionFailure for a file that is no whole pdf; see rgenh_verifyPdf.
void verifyPdf(const std::string& path);

/// The same for the output of a report.
void verifyConversion(const RgenCInputParams& input);

}  // namespace rgenh
