// What the page shows over the last good report when a report cannot be made.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "base/command_error.h"
#include "report/report_generation.h"
#include "templates/finding.h"

namespace cli {

/// The mistakes because of which the report failed, at least one.
Findings mistakesOf(const ReportContext& context, const ReportRequest& request,
                    const CommandError& failure);

}  // namespace cli
