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

/// Applies the template at `templatePath` to `properties`, which are given up as soon as the data
/// document holds them; `result` is replaced on success only.
/// The generator's mutex is held for the whole run. Failures: RGEN_E_UNKNOWN_FORMAT,
/// RGEN_E_XSLT_PARSE, RGEN_E_XSLT_APPLY, RGEN_E_XSLT_RESULT, RGEN_CANCELED.
Status transform(ReportGenerator& generator, const std::string& outputFormat,
                 PropertyMap properties, const std::string& templatePath,
                 const sync::CancellationToken& token, ByteVector& result);

/// Reads, translates and compiles a template. Null when it cannot be read, when nothing of it
/// parses or when it does not compile. The caller holds the mutex.
XmlPtr<xsltStylesheet> loadStylesheet(const ReportGenerator& generator,
                                      const std::string& templatePath);

}  // namespace rgen
