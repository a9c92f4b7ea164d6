// One guarded report, for the direct call and for jobs.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "error/error_record.h"
#include "strata_repgenlib/rgen.h"

namespace rgenh {

/// Generates a report as rgenh_generateReport does. `result` is empty at first. Throws what the
/// library throws, ArgumentErrors and ConversionFailures.
RgenStatus generateReport(RgenReportGenerator* generator, const RgenCInputParams& input,
                          RgenCVariant& result, ErrorRecord& record);

/// The output path of a request, or the GUID of its report type if there is none: the subject of
/// messages.
std::string subjectOf(const RgenCInputParams& input);

/// Frees a result and closes its handle, if any.
void discardResult(RgenCVariant& result) noexcept;

}  // namespace rgenh
