// The persistent data store: one file of named texts for each report type.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "report_generator.h"
#include "status.h"
#include "store/base/guid.h"
#include "store/xml/property_document.h"
#include "variant/variant.h"

namespace rgen {

/// Reads a file of the data directory into `properties`, which is empty after any failure. The
/// mutex is held only to copy the data directory path. Failures: RGEN_E_OPEN_PERSIST,
/// RGEN_E_XPATH_CONTEXT, RGEN_E_XPATH_SEARCH, RGEN_E_NO_PERSIST_VALUES,
/// RGEN_E_NO_VALID_PERSIST_VALUES.
Status readPersistentData(ReportGenerator& generator, const std::string& fileName,
                          PropertyMap& properties);

/// Replaces a file of the data directory. Failures: RGEN_E_DELETE_PERSIST (the old file stays),
/// RGEN_E_CREATE_PERSIST (the old file is removed).
Status writePersistentData(ReportGenerator& generator, const std::string& fileName,
                           const PropertyMap& properties);

/// The three store operations of a report type. Each can also return a status of loadReportType.
Status getPersistentData(ReportGenerator& generator, const Guid& guid, PropertyMap& properties);
Status setPersistentDataFromPairs(ReportGenerator& generator, const Guid& guid,
                                  const PropertyMap& properties);
/// Stores the display text of each value; types and hints are not stored.
Status setPersistentDataFromValues(ReportGenerator& generator, const Guid& guid,
                                   const VariantMap& values);

}  // namespace rgen
