// The external converter: its command line and the wait for it.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "report_generator.h"
#include "status.h"
#include "sync/cancellation.h"

namespace rgen {

/// The converter's command line. Quoting puts one double quote on each side of a text and changes
/// nothing inside it.
std::string converterCommandLine(const std::string& htmlPath, const std::string& converterBaseArg,
                                 const std::string& outputPath);

/// Runs a program and waits for its end without a time limit, looking at the token once a second.
/// RGEN_CANCELED when the token is set; the program then goes on by itself. Other failures:
/// RGEN_E_RUN_EXTERNAL, RGEN_E_EXTERNAL_FAILED. Throws std::range_error for a command line that is
/// not valid UTF-8. The generator is not consulted, no lock is taken.
Status runExternalProgram(ReportGenerator& generator, const std::string& commandLine,
                          const sync::CancellationToken& token);

}  // namespace rgen
