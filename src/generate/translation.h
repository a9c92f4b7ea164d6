// The translation pass over a template's text.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "report_generator.h"

namespace rgen {

/// Replaces every marker call QT_TRANSLATE_NOOP("QObject", "message") in `text` by what the
/// generator's translate function returns for the message, in text order; replacements are not
/// searched again. A marker is exactly what the ECMAScript expression
/// QT_TRANSLATE_NOOP\s*\(\s*"QObject"\s*, "([^"]*)\s*"\) matches. The caller holds the mutex.
void translateTemplateText(const ReportGenerator& generator, std::string& text);

}  // namespace rgen
