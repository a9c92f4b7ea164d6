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

/// Stores the data directory path for `path`: separators are converted to the platform's, one is
/// added at the end if needed, ".rgen" and a separator are appended. Creates nothing on disk.
/// RGEN_E_DIR_NOT_FOUND if nothing exists at `path`; the previous path then stays.
Status setDataDir(ReportGenerator& generator, const std::string& path);

/// A copy of the data directory path, made with the generator's mutex held.
std::string dataDirPathOf(ReportGenerator& generator);

/// Creates the data directory and config.xml if they are missing, and looks up the files of a
/// report type. Holds the generator's mutex throughout. Failures: RGEN_E_CREATE_DIR (the
/// generator's data directory is then unset), RGEN_E_CREATE_CONFIG, RGEN_E_OPEN_CONFIG and those of
/// lookupReportType. An existing config.xml is never rewritten.
Status loadReportType(ReportGenerator& generator, const Guid& guid, ReportTypeEntry& entry);

/// True if `path`, whose separators are the platform's, ends in a separator. Equivalent to a full
/// match of the ECMAScript expression .*(/|\\): a path with a line break before the separator does
/// not match.
bool endsInSeparator(const std::string& path);

}  // namespace rgen
