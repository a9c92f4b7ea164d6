// Values that show whether a template copes with everything that a text can contain.
//
// SPDX-License-Identifier: MIT
#pragma once

#include "data/report_input.h"

namespace cli {

/// The same names with texts of markup, quotes, right-to-left marks and great length, and with the
/// largest and smallest numbers. Times and handles stay as they are.
ReportInput withHostileValues(const ReportInput& input);

}  // namespace cli
