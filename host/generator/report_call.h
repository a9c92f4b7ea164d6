// One guarded report, for the direct call and for jobs.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "error/error_record.h"
#include "strata_repgenlib/rgen.h"

namespace rgenh {

/// Generates a report as rgenh_generateReport does. `result` is empty at first. Throws what the
/// library throws, ArgumentErrors and ConversionFailures. `argument` is the position of the input
/// in the host's call, or 0.
RgenStatus generateReport(RgenReportGenerator* generator, const RgenCInputParams& input,
                          RgenCVariant& result, ErrorRecord& record, int argument = 0);

/// Describes a negative status of a report; returns the status.
RgenStatus reportStatus(const RgenCInputParams& input, RgenStatus status,
                        ErrorRecord& record) noexcept;

/// Frees a result and closes its handle, if any.
void discardResult(RgenCVariant& result) noexcept;

}  // namespace rgenh
