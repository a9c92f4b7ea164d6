// The report-type map of config.xml: the files of each GUID.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <libxml/tree.h>

#include <string>
#include <unordered_map>

#include "report_generator.h"
#include "status.h"
#include "store/base/guid.h"

namespace rgen {

/// File names as written in the configuration.
struct ReportTypeEntry {
    std::string persistDataFile;
    std::string reportTypeFile;
};

/// File names by GUID text.
using FileNameTable = std::unordered_map<std::string, std::string>;

/// Looks up a GUID text in a table. RGEN_E_GUID_NOT_IN_CONFIG if it is missing,
/// RGEN_E_XPATH_NODE_EMPTY if its name is empty.
Status findFileName(const FileNameTable& table, const std::string& guid, std::string& fileName);

/// Finds the files of a report type; the GUID in the configuration is not case-sensitive.
/// On RGEN_OK both names are set and not empty. Failures: RGEN_E_XPATH_CONTEXT,
/// RGEN_E_XPATH_SEARCH, RGEN_E_NO_TYPE_MAP, RGEN_E_NO_VALID_TYPE_MAP, RGEN_E_GUID_NOT_IN_CONFIG,
/// RGEN_E_XPATH_NODE_EMPTY. The generator is not used; the caller holds its mutex.
Status lookupReportType(ReportGenerator& generator, xmlDoc* configuration, const Guid& guid,
                        ReportTypeEntry& entry);

}  // namespace rgen
