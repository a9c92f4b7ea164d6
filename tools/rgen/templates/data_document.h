// The XML document that a template transforms.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "data/report_input.h"
#include "data/report_type.h"

namespace cli {

/// The data document of a report: its values, pairs and the persistent data of its type, as texts
/// that the library made of them, in the library's order. Characters that XML cannot contain are
/// U+FFFD. Throws a CommandError when the library refuses the input.
std::string dataDocument(const DataDirectory& directory, const ReportType& type,
                         const ReportInput& input);

}  // namespace cli
