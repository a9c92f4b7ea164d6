// The translation pass over a template's text.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "report_generator.h"

namespace rgen {

/// Replaces every marker QT_TRANSLATE_NOOP("QObject", "message") in `text` by the result of the
/// generator's translate function for the message, in text order; the results are not searched for
/// markers. A marker is exactly what the ECMAScript expression
/// QT_TRANSLATE_NOOP\s*\(\s*"QObject"\s*, "([^"]*)\s*"\) matches. The caller holds the mutex.
void translateTemplateText(const ReportGenerator& generator, std::string& text);

}  // namespace rgen
