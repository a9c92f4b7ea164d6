// Findings for other programs.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "base/json_document.h"
#include "templates/finding.h"

namespace cli {

/// One object for each finding: severity, code, file, line, column, length, message, advice.
std::vector<JsonDocument> findingRows(const Findings& findings);

/// A log in the Static Analysis Results Interchange Format, version 2.1.0.
JsonDocument sarifDocument(const Findings& findings);

}  // namespace cli
