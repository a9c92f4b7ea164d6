// The report-type map of config.xml: which files belong to a GUID.
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

/// File names as they stand in the configuration.
struct ReportTypeEntry {
    std::string persistDataFile;
    std::string reportTypeFile;
};

/// File names by GUID text.
using FileNameTable = std::unordered_map<std::string, std::string>;

/// Looks a GUID text up in one table. RGEN_E_GUID_NOT_IN_CONFIG when it is absent,
/// RGEN_E_XPATH_NODE_EMPTY when its name is empty.
Status findFileName(const FileNameTable& table, const std::string& guid, std::string& fileName);

/// Finds the files of a report type; letter case of the GUID in the configuration does not matter.
/// On RGEN_OK both names are filled and not empty. Failures: RGEN_E_XPATH_CONTEXT,
/// RGEN_E_XPATH_SEARCH, RGEN_E_NO_TYPE_MAP, RGEN_E_NO_VALID_TYPE_MAP, RGEN_E_GUID_NOT_IN_CONFIG,
/// RGEN_E_XPATH_NODE_EMPTY. The generator is not consulted; the caller holds its mutex.
Status lookupReportType(ReportGenerator& generator, xmlDoc* configuration, const Guid& guid,
                        ReportTypeEntry& entry);

}  // namespace rgen
