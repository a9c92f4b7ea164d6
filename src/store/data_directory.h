// The data directory of a generator and its configuration file config.xml.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "report_generator.h"
#include "status.h"
#include "store/base/guid.h"
#include "store/report_type_map.h"

namespace rgen {

/// Stores the data directory path made from `path`: separators brought to the platform's, one added
/// at the end if needed, ".rgen" and a separator appended. Nothing is created on disk.
/// RGEN_E_DIR_NOT_FOUND when nothing exists at `path`; the previous path then stays.
Status setDataDir(ReportGenerator& generator, const std::string& path);

/// A copy of the data directory path, taken under the generator's mutex.
std::string dataDirPathOf(ReportGenerator& generator);

/// Makes sure that the data directory and config.xml exist and finds the files of a report type.
/// Holds the generator's mutex for its whole run. Failures: RGEN_E_CREATE_DIR (the generator
/// forgets its data directory), RGEN_E_CREATE_CONFIG, RGEN_E_OPEN_CONFIG and those of
/// lookupReportType. An existing config.xml is never rewritten.
Status loadReportType(ReportGenerator& generator, const Guid& guid, ReportTypeEntry& entry);

/// True when `path` ends in a separator by the rule of the data directory path. Gives exactly the
/// results of a full match of the ECMAScript expression .*(/|\\) after separators are brought to
/// the platform's: a line break anywhere before the separator is no match.
bool endsInSeparator(const std::string& path);

}  // namespace rgen
