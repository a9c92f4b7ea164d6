// From merged properties to the bytes of the report: data document, template, XSLT.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "report_generator.h"
#include "status.h"
#include "store/xml/handles.h"
#include "store/xml/property_document.h"
#include "sync/cancellation.h"
#include "variant/variant.h"

namespace rgen {

/// Applies the template at `templatePath` to `properties`, which are freed as soon as the data
/// document contains them; `result` is replaced only on success.
/// Holds the generator's mutex throughout. Failures: RGEN_E_UNKNOWN_FORMAT,
/// RGEN_E_XSLT_PARSE, RGEN_E_XSLT_APPLY, RGEN_E_XSLT_RESULT, RGEN_CANCELED.
Status transform(ReportGenerator& generator, const std::string& outputFormat,
                 PropertyMap properties, const std::string& templatePath,
                 const sync::CancellationToken& token, ByteVector& result);

/// Reads, translates and compiles a template. Null if it cannot be read, contains nothing that
/// parses, or does not compile. The caller holds the mutex.
XmlPtr<xsltStylesheet> loadStylesheet(const ReportGenerator& generator,
                                      const std::string& templatePath);

}  // namespace rgen
